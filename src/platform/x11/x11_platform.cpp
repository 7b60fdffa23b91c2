#include "platform/x11/x11_platform.h"

#include <unistd.h>

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDesktopServices>
#include <QUrl>
#include <atomic>
#include <cstdlib>
#include <utility>

#include "core/texts.h"
#include "platform/linux/desktop_entries.h"
#include "platform/linux/desktop_entry.h"
#include "platform/linux/desktop_programs.h"
#include "platform/linux/ini_user_defaults.h"
#include "platform/linux/journal_log.h"
#include "platform/linux/linux_appearance.h"
#include "platform/linux/linux_tray_icon.h"
#include "platform/linux/session_lock.h"
#include "platform/linux/xdg_login_item.h"
#include "platform/qt/curl_http_client.h"
#include "platform/qt/qt_main_loop.h"
#include "platform/x11/keyboard/x11_keyboard_tap.h"
#include "platform/x11/x11_applications.h"
#include "platform/x11/x11_connection.h"
#include "platform/x11/x11_desktop_monitor.h"
#include "platform/x11/x11_icon_source.h"
#include "platform/x11/x11_panel.h"
#include "platform/x11/x11_pointer.h"
#include "platform/x11/x11_screens.h"
#include "platform/x11/x11_tray_icon.h"
#include "platform/x11/x11_trust.h"
#include "platform/x11/x11_window_control.h"
#include "platform/x11/x11_window_inventory.h"
#include "platform/x11/x11_workspace.h"
#include "platform/x11/x11_xsettings.h"

namespace ferrowyn {
namespace {

void endProgram(Log& log) {
    log.write(LogLevel::error, "permissions", "The connection to the X server is lost; ending");
    QCoreApplication::exit(EXIT_FAILURE);
}

bool openAddress(std::string_view url) {
    const QUrl address(QString::fromUtf8(url.data(), static_cast<qsizetype>(url.size())), QUrl::StrictMode);
    return address.isValid() && QDesktopServices::openUrl(address);
}

}  // namespace

/// The parts of the adapter. Each comes after those that it uses.
struct X11Platform::Parts {
    Parts(std::unique_ptr<X11Connection> connection, const X11PlatformOptions& options);
    ~Parts();
    Parts(const Parts&) = delete;
    Parts& operator=(const Parts&) = delete;

    std::string display;
    QtMainLoop mainLoop;
    JournalLog log;
    XdgFolders folders;
    IniUserDefaults userDefaults;
    DesktopEntries entries;
    X11InputContext inputContext;
    std::atomic<double> scale{1.0};
    std::function<bool(SettingsPage)> openOwnSettingsPage;

    X11EventConnection events;
    X11Atoms atoms;
    X11ApplicationDirectory directory;
    std::string inputObstacle;
    X11DesktopMonitor monitor;
    X11DesktopSnapshots snapshots;
    X11WindowInventory inventory;
    X11AccessibilityObservers observers;
    X11WindowControl control;
    X11Workspace workspace;
    X11Application application;
    X11IconSource icons;
    CurlHttpClient httpClient;
    XdgLoginItem loginItem;
    X11KeyboardTaps keyboardTaps;
    SessionLock sessionLock;
    X11Trust trust;

    X11SentEventFilter sentEventFilter;
    X11Screens screens;
    X11Compositor compositor;
    X11Pointer pointer;
    X11Panel panel;
    LinuxAppearance appearance;
    X11Xsettings xsettings;

    Subscription installedChanges;
    Subscription screenChanges;
    /// Nearly last, so that its destructor waits for running work before the parts above are destroyed.
    QtBackgroundWork backgroundWork;
    Platform platform;
};

X11Platform::Parts::Parts(std::unique_ptr<X11Connection> connection, const X11PlatformOptions& options)
    : display(options.display),
      log(options.minimumLogLevel, options.mirrorsLog ? JournalLog::Mirror::always : JournalLog::Mirror::whenTerminal),
      folders(XdgFolders::fromEnvironment()),
      userDefaults(folders.configHome / "Ferrowyn" / "Ferrowyn.ini", log),
      entries(mainLoop, folders, DesktopEntries::currentLocale()),
      events(std::move(connection),
             [this, onLost = options.onConnectionLost] {
                 snapshots.close(X11DesktopSnapshots::End::connectionLost);
                 onLost ? onLost() : endProgram(log);
             }),
      atoms(events.connection()),
      directory([this](const auto& identity) { return findInstalledApplication(entries, identity); }, getpid()),
      inputObstacle(ferrowyn::inputObstacle(events.get())),
      monitor(mainLoop, events, atoms, directory),
      snapshots(mainLoop, monitor),
      inventory(snapshots, monitor.model(), directory, scale),
      observers(monitor.model()),
      control(monitor, atoms, inputContext, log),
      workspace(monitor,
                {.installedApplicationName = [this](std::string_view identifier) -> std::optional<std::string> {
                     const auto entry = entries.byId(identifier);
                     return entry ? std::optional(entry->name) : std::nullopt;
                 },
                 .installedApplicationPath = [this](std::string_view identifier) -> std::optional<std::string> {
                     const auto entry = entries.byId(identifier);
                     return entry ? std::optional(entry->path) : std::nullopt;
                 },
                 .openAddress = openAddress,
                 .openSettings =
                     [this](SettingsPage page) {
                         if (page == SettingsPage::loginItems) {
                             openAutostartSettings(QDBusConnection::sessionBus(), loginItem.userEntry(),
                                                   [](const QString& address) { openAddress(address.toStdString()); });
                             return true;
                         }
                         return openOwnSettingsPage && openOwnSettingsPage(page);
                     }}),
      application(monitor.model(), control),
      icons(monitor, atoms, entries),
      httpClient(mainLoop, backgroundWork),
      loginItem(folders, {std::string(applicationId), "Ferrowyn", application.bundleInfo().path}),
      keyboardTaps(inputContext, log, options.display),
      // The screen locker must be able to grab the keyboard.
      sessionLock(mainLoop, SessionLock::Buses::fromEnvironment(),
                  [this] { keyboardTaps.notifyKeyboardUnavailable(); }),
      trust(monitor.model(), inputContext,
            {.isLocked = [this] { return sessionLock.isLocked(); },
             .observe =
                 [this](std::function<void()> handler) {
                     return sessionLock.observe([handler = std::move(handler)](bool) { handler(); });
                 }},
            inputObstacle, log),
      screens(events),
      compositor(events),
      pointer(events, screens, inputContext),
      panel(events, screens, compositor, pointer),
      appearance(mainLoop),
      xsettings(events, [this](std::optional<std::string> theme) { appearance.setXsettingsTheme(std::move(theme)); }),
      platform{mainLoop,  backgroundWork, log,     userDefaults, application,  workspace,
               inventory, observers,      control, trust,        keyboardTaps, screens,
               pointer,   panel,          icons,   httpClient,   loginItem,    linuxTexts()} {
    const char* const environmentDisplay = std::getenv("DISPLAY");  // NOLINT(concurrency-mt-unsafe): nothing sets it
    inputContext.inputMethodDisplay = display.empty() && environmentDisplay != nullptr ? environmentDisplay : display;
    inputContext.postToMainThread = [this](std::function<void()> work) { mainLoop.post(std::move(work)); };
    // The tap thread calls this before it posts the trigger, so the main thread handles it first.
    inputContext.reportActiveWindow = [this](std::uint32_t window) {
        mainLoop.post([this, window] { monitor.startSessionFrom(window); });
    };
    inputContext.reportLostTrigger = [this] { mainLoop.post([this] { trust.noteLostTrigger(); }); };
    scale = screens.coordinates().scale;
    screenChanges = screens.observe([this] { scale = screens.coordinates().scale; });
    installedChanges = entries.observeChanges([this] {
        // A worker reads the folders; the known applications stay in use until it is done.
        backgroundWork.run([this] {
            entries.read();
            mainLoop.post([this] {
                directory.forgetAll();
                monitor.noteInstalledApplicationsChanged();
            });
        });
    });
}

/// A worker may be waiting for a snapshot, and the workers are joined when their pool is destroyed.
X11Platform::Parts::~Parts() {
    snapshots.close(X11DesktopSnapshots::End::programEnds);
}

std::unique_ptr<X11Platform> X11Platform::create(const X11PlatformOptions& options) {
    auto connection = X11Connection::open(options.display.empty() ? nullptr : options.display.c_str());
    if (!connection) {
        return nullptr;
    }
    return std::unique_ptr<X11Platform>(new X11Platform(std::make_unique<Parts>(std::move(connection), options)));
}

X11Platform::X11Platform(std::unique_ptr<Parts> parts) : parts_(std::move(parts)) {}
X11Platform::~X11Platform() = default;

const Platform& X11Platform::platform() const {
    return parts_->platform;
}

void X11Platform::setSettingsPageHandler(std::function<bool(SettingsPage)> handler) {
    parts_->openOwnSettingsPage = std::move(handler);
}

std::unique_ptr<LinuxTrayIcon> X11Platform::makeTrayIcon(const TraySymbolPainter& painter) {
    const auto makeEmbedded = [this, painter] {
        return std::make_unique<X11TrayIcon>(parts_->events, parts_->mainLoop, painter);
    };
    return std::make_unique<LinuxTrayIcon>(parts_->mainLoop, parts_->backgroundWork,
                                           SessionLock::Buses::fromEnvironment().session, painter, makeEmbedded);
}

const Published<AppearanceSources>& X11Platform::appearance() const {
    return parts_->appearance.sources();
}

bool X11Platform::isComposited() const {
    return parts_->compositor.isRunning();
}

}  // namespace ferrowyn

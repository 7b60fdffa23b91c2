#include "platform/x11/x11_platform.h"

#include <QCoreApplication>
#include <QDesktopServices>
#include <QUrl>
#include <atomic>
#include <cstdlib>
#include <utility>

#include "core/text_table.h"
#include "platform/linux/desktop_entries.h"
#include "platform/linux/ini_user_defaults.h"
#include "platform/linux/journal_log.h"
#include "platform/linux/session_lock.h"
#include "platform/qt/qt_background_work.h"
#include "platform/qt/qt_main_loop.h"
#include "platform/simulated/simulated_http_client.h"
#include "platform/simulated/simulated_login_item.h"
#include "platform/x11/x11_accessibility_observers.h"
#include "platform/x11/x11_application.h"
#include "platform/x11/x11_compositor.h"
#include "platform/x11/x11_desktop_monitor.h"
#include "platform/x11/x11_desktop_reader.h"
#include "platform/x11/x11_event_taps.h"
#include "platform/x11/x11_icon_source.h"
#include "platform/x11/x11_installed_applications.h"
#include "platform/x11/x11_panel.h"
#include "platform/x11/x11_pointer.h"
#include "platform/x11/x11_screens.h"
#include "platform/x11/x11_trust.h"
#include "platform/x11/x11_wayland_session.h"
#include "platform/x11/x11_window_control.h"
#include "platform/x11/x11_window_inventory.h"
#include "platform/x11/x11_workspace.h"

namespace ferrowyn {
namespace {

/// Each part of the adapter has its own connection, so that none waits for another's answers.
struct Connections {
    std::unique_ptr<X11Connection> events;
    std::unique_ptr<X11Connection> snapshots;
    std::unique_ptr<X11Connection> panel;
};

std::optional<Connections> openConnections(const std::string& display, std::string& error) {
    const char* const name = display.empty() ? nullptr : display.c_str();
    Connections connections{X11Connection::open(name), X11Connection::open(name), X11Connection::open(name)};
    if (connections.events && connections.snapshots && connections.panel) {
        if (isServerOfWaylandSession(connections.events->get(), connections.events->root())) {
            error = waylandExplanation;
            return std::nullopt;
        }
        return connections;
    }
    const char* const wanted = name != nullptr ? name : std::getenv("DISPLAY");
    if (wanted == nullptr || *wanted == '\0') {
        error = std::getenv("WAYLAND_DISPLAY") != nullptr
                    ? waylandExplanation
                    : "No X11 display: DISPLAY is not set. Start Ferrowyn from within an X11 session, or set DISPLAY.";
    } else {
        error = "No X11 display: there is no X server at \"" + std::string(wanted) +
                "\", or it refuses this user. Check DISPLAY and XAUTHORITY.";
    }
    return std::nullopt;
}

void endProgram(Log& log) {
    log.write(LogLevel::error, "permissions", "The connection to the X server is lost; ending");
    QCoreApplication::exit(EXIT_FAILURE);
}

bool openAddress(std::string_view url) {
    const QUrl address(QString::fromUtf8(url.data(), static_cast<qsizetype>(url.size())), QUrl::StrictMode);
    return address.isValid() && QDesktopServices::openUrl(address);
}

}  // namespace

/// In the order in which they need each other.
struct X11Platform::Parts {
    Parts(Connections connections, const X11PlatformOptions& options);

    QtMainLoop mainLoop;
    JournalLog log;
    QtBackgroundWork backgroundWork;
    XdgFolders folders;
    IniUserDefaults userDefaults;
    DesktopEntries entries;
    SessionLock sessionLock;
    X11InputContext inputContext;
    std::atomic<double> scale{1.0};
    std::function<bool(std::string_view)> openSettingsPage;

    X11Atoms atoms;
    X11FocusHistory history;
    X11ApplicationDirectory directory;
    std::string missingInput;
    X11DesktopMonitor monitor;
    X11DesktopReader reader;
    X11WindowInventory inventory;
    X11AccessibilityObservers observers;
    X11WindowControl control;
    X11Workspace workspace;
    X11Application application;
    X11IconSource icons;
    SimulatedHttpClient httpClient;
    SimulatedLoginItem loginItem;
    X11EventTaps eventTaps;
    X11Trust trust;

    X11PanelEvents panelEvents;
    X11Screens screens;
    X11Compositor compositor;
    X11Pointer pointer;
    X11Panel panel;

    Subscription installedChanges;
    Subscription lockChanges;
    Subscription screenChanges;
    Subscription windowReadings;
    Platform platform;
};

X11Platform::Parts::Parts(Connections connections, const X11PlatformOptions& options)
    : log(options.minimumLogLevel, options.mirrorsLog ? JournalLog::Mirror::always : JournalLog::Mirror::whenTerminal),
      folders(XdgFolders::fromEnvironment()),
      userDefaults(folders.configHome / "Ferrowyn" / "Ferrowyn.ini", log),
      entries(mainLoop, folders, DesktopEntries::currentLocale()),
      sessionLock(mainLoop),
      atoms(*connections.events),
      directory([this](const auto& identity) { return findInstalledApplication(entries, identity); }),
      missingInput(missingInputExtension(connections.events->get())),
      monitor(mainLoop, std::move(connections.events), atoms, directory, history,
              [this, onLost = options.onConnectionLost] { onLost ? onLost() : endProgram(log); }),
      reader(std::move(connections.snapshots), atoms),
      inventory(reader, monitor.model(), directory, history, scale),
      observers(monitor.model()),
      control(monitor, atoms, inputContext, log),
      workspace(
          monitor,
          {.installedApplicationName = [this](std::string_view identifier) -> std::optional<std::string> {
               const auto entry = entries.byId(identifier);
               return entry ? std::optional(entry->name) : std::nullopt;
           },
           .openAddress = openAddress,
           .openSettingsPage = [this](std::string_view url) { return openSettingsPage && openSettingsPage(url); }}),
      application(monitor.model(), control),
      icons(monitor, atoms, entries),
      eventTaps(inputContext, log, options.display),
      trust(monitor.model(), inputContext,
            {.isLocked = [this] { return sessionLock.isLocked(); },
             .observe =
                 [this](std::function<void()> handler) {
                     return sessionLock.observe([told = std::move(handler)](bool) { told(); });
                 }},
            missingInput, log),
      panelEvents(std::move(connections.panel)),
      screens(panelEvents),
      compositor(panelEvents),
      pointer(panelEvents, screens, inputContext),
      panel(panelEvents, screens, compositor, pointer),
      platform{mainLoop,  backgroundWork, log,     userDefaults, application, workspace,
               inventory, observers,      control, trust,        eventTaps,   screens,
               pointer,   panel,          icons,   httpClient,   loginItem,   linuxTexts()} {
    // Posted from the thread that posts the trigger next, so it arrives right before it.
    inputContext.reportActiveWindow = [this](std::uint32_t window) {
        mainLoop.post([this, window] { monitor.startSessionFrom(window); });
    };
    scale = screens.coordinates().scale;
    screenChanges = screens.observe([this] { scale = screens.coordinates().scale; });
    installedChanges = entries.observeChanges([this] { directory.forgetAll(); });
    reader.keepLastingFacts();
    windowReadings = monitor.windowReadings().subscribe([this](const auto& windows) { reader.forget(windows); });
    lockChanges = sessionLock.observe([this](bool isLocked) {
        if (isLocked) {
            // A locker must be able to take the keyboard.
            eventTaps.notifyKeyboardUnavailable();
        }
    });
}

std::unique_ptr<X11Platform> X11Platform::create(const X11PlatformOptions& options, std::string& error) {
    auto connections = openConnections(options.display, error);
    if (!connections) {
        return nullptr;
    }
    return std::unique_ptr<X11Platform>(new X11Platform(std::make_unique<Parts>(std::move(*connections), options)));
}

X11Platform::X11Platform(std::unique_ptr<Parts> parts) : parts_(std::move(parts)) {}
X11Platform::~X11Platform() = default;

const Platform& X11Platform::platform() const {
    return parts_->platform;
}

void X11Platform::setSettingsPageHandler(std::function<bool(std::string_view)> handler) {
    parts_->openSettingsPage = std::move(handler);
}

}  // namespace ferrowyn

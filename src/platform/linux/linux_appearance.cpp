#include "platform/linux/linux_appearance.h"

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusServiceWatcher>
#include <QDBusVariant>
#include <QMap>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QVariantMap>
#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <string_view>
#include <system_error>
#include <utility>

#include "platform/linux/atomic_file.h"
#include "platform/linux/bus.h"
#include "platform/linux/session_lock.h"
#include "platform/main_loop.h"

namespace ferrowyn {

namespace {

namespace fs = std::filesystem;

constexpr std::size_t largestFile = 1U << 20U;

std::string_view trimmed(std::string_view text) {
    constexpr std::string_view blanks = " \t\r";
    const auto first = text.find_first_not_of(blanks);
    return first == std::string_view::npos ? std::string_view()
                                           : text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

/// The value of a key in a group, read as the two toolkits read their files: lines that are no entry are skipped, and
/// the last value counts.
std::optional<std::string> valueIn(std::string_view text, std::string_view group, std::string_view key) {
    std::optional<std::string> value;
    bool isInGroup = false;
    while (!text.empty()) {
        const auto end = text.find('\n');
        const auto line = trimmed(text.substr(0, end));
        text = end == std::string_view::npos ? std::string_view() : text.substr(end + 1);
        if (line.starts_with('[')) {
            isInGroup = line.size() == group.size() + 2 && line.substr(1, group.size()) == group && line.ends_with(']');
        } else if (const auto equals = line.find('=');
                   isInGroup && equals != std::string_view::npos && trimmed(line.substr(0, equals)) == key) {
            value = std::string(trimmed(line.substr(equals + 1)));
        }
    }
    return value;
}

std::optional<std::string> valueIn(const std::vector<std::string>& texts, std::string_view group,
                                   std::string_view key) {
    for (const auto& text : texts) {
        if (auto value = valueIn(text, group, key)) {
            return value;
        }
    }
    return std::nullopt;
}

/// Reads "red,green,blue"; an opacity may follow and is ignored.
std::optional<RgbColor> colorFrom(const std::optional<std::string>& value) {
    if (!value) {
        return std::nullopt;
    }
    std::string_view rest = *value;
    std::array<std::uint8_t, 3> parts{};
    for (auto& part : parts) {
        const auto comma = rest.find(',');
        const auto number = trimmed(rest.substr(0, comma));
        const auto [end, error] = std::from_chars(number.data(), number.data() + number.size(), part);
        if (error != std::errc() || end != number.data() + number.size()) {
            return std::nullopt;
        }
        rest = comma == std::string_view::npos ? std::string_view() : rest.substr(comma + 1);
    }
    return RgbColor{parts[0], parts[1], parts[2]};
}

std::vector<std::string> contentsOf(const std::vector<fs::path>& files) {
    std::vector<std::string> contents;
    for (const auto& file : files) {
        std::error_code error;
        contents.push_back(readFile(file, largestFile, error));
    }
    return contents;
}

std::vector<fs::path> inEach(const XdgFolders& folders, const fs::path& relative) {
    std::vector<fs::path> files{folders.configHome / relative};
    for (const auto& folder : folders.configDirs) {
        files.push_back(folder / relative);
    }
    return files;
}

std::vector<fs::path> gtkFilesIn(const XdgFolders& folders) {
    auto files = inEach(folders, "gtk-3.0/settings.ini");
    files.emplace_back("/etc/gtk-3.0/settings.ini");
    return files;
}

/// The user's folders only: the system's files do not change while a session runs.
std::vector<fs::path> watchedFolders(const XdgFolders& folders) {
    return {folders.configHome, folders.configHome / "gtk-3.0"};
}

}  // namespace

ThemeFiles::ThemeFiles(const XdgFolders& folders, std::function<void()> onChange)
    : plasmaFiles_(inEach(folders, "kdeglobals")),
      gtkFiles_(gtkFilesIn(folders)),
      folderWatcher_(watchedFolders(folders), [this, onChange] {
          watchFiles();
          onChange();
      }) {
    QObject::connect(&fileWatcher_, &QFileSystemWatcher::fileChanged, &fileWatcher_,
                     [this, onChange = std::move(onChange)] {
                         watchFiles();
                         onChange();
                     });
    watchFiles();
}

void ThemeFiles::watchFiles() {
    for (const auto& file : {plasmaFiles_.front(), gtkFiles_.front()}) {
        const auto path = QString::fromStdString(file.string());
        std::error_code error;
        // The watcher drops a file that is removed or replaced.
        if (fs::is_regular_file(file, error) && !fileWatcher_.files().contains(path)) {
            fileWatcher_.addPath(path);
        }
    }
}

void ThemeFiles::read(AppearanceSources& sources) const {
    const auto plasma = contentsOf(plasmaFiles_);
    sources.plasmaWindow = colorFrom(valueIn(plasma, "Colors:Window", "BackgroundNormal"));
    sources.plasmaAccent = colorFrom(valueIn(plasma, "General", "AccentColor"));
    if (!sources.plasmaAccent) {
        sources.plasmaAccent = colorFrom(valueIn(plasma, "Colors:Selection", "BackgroundNormal"));
    }
    const auto gtk = contentsOf(gtkFiles_);
    sources.gtkFileTheme = valueIn(gtk, "Settings", "gtk-theme-name");
    const auto prefersDark = valueIn(gtk, "Settings", "gtk-application-prefer-dark-theme");
    sources.gtkFilePrefersDark = prefersDark == "1" || prefersDark == "true" || prefersDark == "TRUE";
}

/// Reads the appearance from the desktop's settings portal (org.freedesktop.portal.Settings) and follows its changes.
/// Calls back on its thread. Owned by the `BusThread` that it lives on.
class SettingsPortalListener final : public QObject {
    Q_OBJECT

public:
    struct Answer {
        std::optional<ColorScheme> scheme;
        std::optional<RgbColor> accent;
        friend bool operator==(const Answer&, const Answer&) = default;
    };

    /// `onChange` is called at each change of the answer, which is empty at first.
    SettingsPortalListener(std::string busAddress, std::function<void(const Answer&)> onChange);
    ~SettingsPortalListener() override;

    /// Connects, and connects again after the bus was restarted. Blocks until the bus answers.
    void start();

private slots:
    void onSettingChanged(const QString& group, const QString& key, const QDBusVariant& value);

private:
    void listen();
    void readAll();
    void take(const QString& key, const QVariant& value);
    void reportIfChanged();

    std::string busAddress_;
    std::function<void(const Answer&)> onChange_;
    std::optional<QDBusConnection> bus_;
    std::unique_ptr<BusLink> link_;
    std::unique_ptr<QDBusServiceWatcher> ownerWatcher_;
    Answer answer_;
    Answer lastReported_;
};

LinuxAppearance::Options LinuxAppearance::Options::fromEnvironment() {
    const char* const desktop = std::getenv("XDG_CURRENT_DESKTOP");
    return {.folders = XdgFolders::fromEnvironment(),
            .busAddress = SessionLock::Buses::fromEnvironment().session,
            .currentDesktop = desktop == nullptr ? "" : desktop};
}

LinuxAppearance::LinuxAppearance(MainLoop& mainLoop, const Options& options)
    : sources_(AppearanceSources{.isPlasma = std::ranges::count(splitAtColons(options.currentDesktop), "KDE") > 0}),
      files_(options.folders, [this] { readFiles(); }) {
    readFiles();
    if (options.busAddress) {
        startListening(mainLoop, *options.busAddress);
    }
}

LinuxAppearance::~LinuxAppearance() = default;

void LinuxAppearance::setXsettingsTheme(std::optional<std::string> name) {
    auto sources = sources_.get();
    sources.xsettingsTheme = std::move(name);
    sources_.setIfChanged(std::move(sources));
}

void LinuxAppearance::readFiles() {
    auto sources = sources_.get();
    files_.read(sources);
    sources_.setIfChanged(std::move(sources));
}

void LinuxAppearance::startListening(MainLoop& mainLoop, const std::string& busAddress) {
    const auto take = life_.guard([this](const SettingsPortalListener::Answer& answer) {
        auto sources = sources_.get();
        sources.portalScheme = answer.scheme;
        sources.portalAccent = answer.accent;
        sources_.setIfChanged(std::move(sources));
    });
    auto* const listener =
        new SettingsPortalListener(busAddress, [&mainLoop, take](const SettingsPortalListener::Answer& answer) {
            mainLoop.post([take, answer] { take(answer); });
        });
    portal_ = std::make_unique<BusThread>("ferrowyn-portal", listener, [listener] { listener->start(); });
}

namespace {

const QString portalService = QStringLiteral("org.freedesktop.portal.Desktop");
const QString portalPath = QStringLiteral("/org/freedesktop/portal/desktop");
const QString settingsInterface = QStringLiteral("org.freedesktop.portal.Settings");
const QString appearanceGroup = QStringLiteral("org.freedesktop.appearance");
const QString schemeKey = QStringLiteral("color-scheme");
const QString accentKey = QStringLiteral("accent-color");

std::optional<ColorScheme> schemeFrom(const QVariant& value) {
    constexpr unsigned prefersDark = 1;
    constexpr unsigned prefersLight = 2;
    bool isNumber = false;
    const unsigned number = value.toUInt(&isNumber);
    if (!isNumber || (number != prefersDark && number != prefersLight)) {
        return std::nullopt;
    }
    return number == prefersDark ? ColorScheme::dark : ColorScheme::light;
}

/// Three parts from 0 to 1. A part outside that range means that no accent is chosen.
std::optional<RgbColor> accentFrom(const QVariant& value) {
    if (!value.canConvert<QDBusArgument>()) {
        return std::nullopt;
    }
    const auto argument = value.value<QDBusArgument>();
    if (argument.currentSignature() != QLatin1String("(ddd)")) {
        return std::nullopt;
    }
    double parts[3] = {};
    argument.beginStructure();
    argument >> parts[0] >> parts[1] >> parts[2];
    argument.endStructure();
    const bool isColor = std::ranges::all_of(parts, [](double part) { return part >= 0 && part <= 1; });
    const auto byte = [](double part) { return static_cast<std::uint8_t>(std::lround(part * 255)); };
    return isColor ? std::optional(RgbColor{byte(parts[0]), byte(parts[1]), byte(parts[2])}) : std::nullopt;
}

}  // namespace

SettingsPortalListener::SettingsPortalListener(std::string busAddress, std::function<void(const Answer&)> onChange)
    : busAddress_(std::move(busAddress)), onChange_(std::move(onChange)) {}

SettingsPortalListener::~SettingsPortalListener() {
    ownerWatcher_.reset();
    bus_.reset();
}

void SettingsPortalListener::start() {
    // While the bus is away, the last answer stays.
    link_ = std::make_unique<BusLink>(busAddress_, QStringLiteral("settings-portal"),
                                      BusLink::Handlers{.connected =
                                                            [this](const QDBusConnection& bus) {
                                                                bus_ = bus;
                                                                listen();
                                                            },
                                                        .lost =
                                                            [this] {
                                                                ownerWatcher_.reset();
                                                                bus_.reset();
                                                            }});
    link_->start();
}

void SettingsPortalListener::listen() {
    ownerWatcher_ =
        std::make_unique<QDBusServiceWatcher>(portalService, *bus_, QDBusServiceWatcher::WatchForRegistration);
    // A restarted portal may have other settings.
    connect(ownerWatcher_.get(), &QDBusServiceWatcher::serviceRegistered, this, [this] { readAll(); });
    // Qt finds the slot by its signature only when this type is registered.
    qRegisterMetaType<QDBusVariant>();
    bus_->connect(portalService, portalPath, settingsInterface, "SettingChanged", this,
                  SLOT(onSettingChanged(QString, QString, QDBusVariant)));
    readAll();
}

void SettingsPortalListener::readAll() {
    auto call = methodCall(portalService, portalPath, settingsInterface, "ReadAll", {QStringList{appearanceGroup}});
    // The portal is meant to be started by the first program that calls it.
    call.setAutoStartService(true);
    callAsync(*bus_, call, *this, [this](const QDBusMessage& reply) {
        if (reply.type() != QDBusMessage::ReplyMessage || reply.signature() != QLatin1String("a{sa{sv}}")) {
            return;
        }
        const auto groups = qdbus_cast<QMap<QString, QVariantMap>>(reply.arguments().constFirst());
        const auto group = groups.value(appearanceGroup);
        take(schemeKey, group.value(schemeKey));
        take(accentKey, group.value(accentKey));
        reportIfChanged();
    });
}

void SettingsPortalListener::onSettingChanged(const QString& group, const QString& key, const QDBusVariant& value) {
    if (group == appearanceGroup) {
        take(key, value.variant());
        reportIfChanged();
    }
}

void SettingsPortalListener::take(const QString& key, const QVariant& value) {
    if (key == schemeKey) {
        answer_.scheme = schemeFrom(value);
    } else if (key == accentKey) {
        answer_.accent = accentFrom(value);
    }
}

void SettingsPortalListener::reportIfChanged() {
    if (!(std::exchange(lastReported_, answer_) == answer_)) {
        onChange_(answer_);
    }
}

}  // namespace ferrowyn

// The meta-objects of the classes above, generated by moc.
#include "linux_appearance.moc"

#include "platform/linux/session_lock.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusServiceWatcher>
#include <QDBusVariant>
#include <QObject>
#include <QSet>
#include <QString>
#include <QStringList>
#include <QVariant>
#include <QVariantMap>
#include <array>
#include <cstdlib>
#include <filesystem>
#include <system_error>
#include <utility>

#include "platform/linux/bus.h"
#include "platform/main_loop.h"

namespace ferrowyn {

/// Listens on the buses and calls both callbacks on its thread. Owned by the `BusThread` that it lives on.
class SessionLockListener final : public QObject {
    Q_OBJECT

public:
    /// `onChange` is called with each change; the session counts as unlocked before the first report. `onLocking` is
    /// called with each report of a lock, also when the session is locked already.
    SessionLockListener(SessionLock::Buses buses, std::function<void(bool isLocked)> onChange,
                        std::function<void()> onLocking);
    ~SessionLockListener() override;

    /// Connects, and connects again after a bus was restarted. Blocks until the buses answer.
    void start();

private slots:
    void onLock();
    void onUnlock();
    void onPrepareForSleep(bool isStarting);
    void onSessionProperties(const QString& interface, const QVariantMap& changed, const QStringList& invalidated);
    void onScreenSaver(bool isActive, const QDBusMessage& message);

private:
    void forgetLoginManager();
    void forgetScreenSavers();
    void listenToLoginManager();
    void listenToSession(const QString& path);
    void listenToScreenSavers();
    void askScreenSaver(const QString& interface, const QString& path);
    void setLockedBySession(bool isLocked);
    void setGoingToSleep(bool isGoingToSleep);
    void setScreenSaverActive(const QString& owner, bool isActive);
    void reportIfChanged();

    SessionLock::Buses buses_;
    std::function<void(bool isLocked)> onChange_;
    std::function<void()> onLocking_;
    std::optional<QDBusConnection> system_;
    std::optional<QDBusConnection> session_;
    std::unique_ptr<BusLink> systemLink_;
    std::unique_ptr<BusLink> sessionLink_;
    std::unique_ptr<QDBusServiceWatcher> ownerWatcher_;
    bool isLockedBySession_ = false;
    bool isGoingToSleep_ = false;
    /// The bus names of the active screen savers. One that leaves the bus no longer locks the session.
    QSet<QString> activeScreenSavers_;
    bool isLocked_ = false;
};

namespace {

std::optional<std::string> busAddress(const char* variable, const std::filesystem::path& socket) {
    if (const char* address = std::getenv(variable); address != nullptr && *address != '\0') {
        return address;
    }
    std::error_code error;
    return std::filesystem::is_socket(socket, error) ? std::optional("unix:path=" + socket.string()) : std::nullopt;
}

}  // namespace

SessionLock::Buses SessionLock::Buses::fromEnvironment() {
    const char* runtimeFolder = std::getenv("XDG_RUNTIME_DIR");
    return {
        busAddress("DBUS_SYSTEM_BUS_ADDRESS", "/run/dbus/system_bus_socket"),
        busAddress("DBUS_SESSION_BUS_ADDRESS",
                   std::filesystem::path(runtimeFolder == nullptr ? "" : runtimeFolder) / "bus"),
    };
}

SessionLock::SessionLock(MainLoop& mainLoop, const Buses& buses, std::function<void()> onLocking) {
    if (!buses.system && !buses.session) {
        return;
    }
    const auto take = life_.guard([this](bool isLocked) { setLocked(isLocked); });
    auto* const listener = new SessionLockListener(
        buses, [&mainLoop, take](bool isLocked) { mainLoop.post([take, isLocked] { take(isLocked); }); },
        std::move(onLocking));
    thread_ = std::make_unique<BusThread>("ferrowyn-lock", listener, [listener] { listener->start(); });
}

SessionLock::~SessionLock() = default;

Subscription SessionLock::observe(std::function<void(bool)> onChange) const {
    return changes_.subscribe([onChange = std::move(onChange)](const bool& isLocked) { onChange(isLocked); });
}

void SessionLock::setLocked(bool isLocked) {
    isLocked_ = isLocked;
    changes_.send(isLocked);
}

namespace {

const QString loginService = QStringLiteral("org.freedesktop.login1");
const QString loginManagerPath = QStringLiteral("/org/freedesktop/login1");
const QString loginManagerInterface = QStringLiteral("org.freedesktop.login1.Manager");
const QString loginSessionInterface = QStringLiteral("org.freedesktop.login1.Session");
const QString lockedHint = QStringLiteral("LockedHint");

struct ScreenSaverAddress {
    const char* interface;
    const char* path;
};
/// The common name first, then those of desktops that use another one.
constexpr std::array<ScreenSaverAddress, 5> screenSavers{{
    {"org.freedesktop.ScreenSaver", "/org/freedesktop/ScreenSaver"},
    {"org.gnome.ScreenSaver", "/org/gnome/ScreenSaver"},
    {"org.cinnamon.ScreenSaver", "/org/cinnamon/ScreenSaver"},
    {"org.mate.ScreenSaver", "/org/mate/ScreenSaver"},
    {"org.xfce.ScreenSaver", "/org/xfce/ScreenSaver"},
}};

}  // namespace

SessionLockListener::SessionLockListener(SessionLock::Buses buses, std::function<void(bool isLocked)> onChange,
                                         std::function<void()> onLocking)
    : buses_(std::move(buses)), onChange_(std::move(onChange)), onLocking_(std::move(onLocking)) {}

SessionLockListener::~SessionLockListener() {
    ownerWatcher_.reset();
    system_.reset();
    session_.reset();
}

void SessionLockListener::start() {
    if (buses_.system) {
        systemLink_ = std::make_unique<BusLink>(*buses_.system, QStringLiteral("session-lock-system"),
                                                BusLink::Handlers{.connected =
                                                                      [this](const QDBusConnection& bus) {
                                                                          system_ = bus;
                                                                          listenToLoginManager();
                                                                      },
                                                                  .lost = [this] { forgetLoginManager(); }});
        systemLink_->start();
    }
    if (buses_.session) {
        sessionLink_ = std::make_unique<BusLink>(*buses_.session, QStringLiteral("session-lock-session"),
                                                 BusLink::Handlers{.connected =
                                                                       [this](const QDBusConnection& bus) {
                                                                           session_ = bus;
                                                                           listenToScreenSavers();
                                                                       },
                                                                   .lost = [this] { forgetScreenSavers(); }});
        sessionLink_->start();
    }
}

/// The report that the machine is awake again may have been lost with the bus, so it no longer counts as asleep. The
/// lock state is kept until it is read again from the next bus.
void SessionLockListener::forgetLoginManager() {
    system_.reset();
    setGoingToSleep(false);
}

/// Screen savers that still run get new names on the next bus and are asked there.
void SessionLockListener::forgetScreenSavers() {
    ownerWatcher_.reset();
    session_.reset();
    activeScreenSavers_.clear();
    reportIfChanged();
}

void SessionLockListener::listenToLoginManager() {
    system_->connect(loginService, loginManagerPath, loginManagerInterface, "PrepareForSleep", this,
                     SLOT(onPrepareForSleep(bool)));
    const auto id = qEnvironmentVariable("XDG_SESSION_ID");
    const auto callToManager = [](const QString& method, const QVariant& argument) {
        return methodCall(loginService, loginManagerPath, loginManagerInterface, method, {argument});
    };
    // Process 0 stands for the caller.
    callAsync(*system_, id.isEmpty() ? callToManager("GetSessionByPID", 0U) : callToManager("GetSession", id), *this,
              [this](const QDBusMessage& reply) {
                  if (const auto session = valueOf<QDBusObjectPath>(reply); session && system_) {
                      listenToSession(session->path());
                  }
              });
}

void SessionLockListener::listenToSession(const QString& path) {
    system_->connect(loginService, path, loginSessionInterface, "Lock", this, SLOT(onLock()));
    system_->connect(loginService, path, loginSessionInterface, "Unlock", this, SLOT(onUnlock()));
    system_->connect(loginService, path, propertiesInterface, "PropertiesChanged", this,
                     SLOT(onSessionProperties(QString, QVariantMap, QStringList)));
    callAsync(*system_, propertyCall(loginService, path, loginSessionInterface, lockedHint), *this,
              [this](const QDBusMessage& reply) {
                  if (const auto isLocked = valueOf<QDBusVariant>(reply)) {
                      setLockedBySession(isLocked->variant().toBool());
                  }
              });
}

void SessionLockListener::listenToScreenSavers() {
    ownerWatcher_ = std::make_unique<QDBusServiceWatcher>();
    ownerWatcher_->setConnection(*session_);
    ownerWatcher_->setWatchMode(QDBusServiceWatcher::WatchForUnregistration);
    connect(ownerWatcher_.get(), &QDBusServiceWatcher::serviceUnregistered, this,
            [this](const QString& owner) { setScreenSaverActive(owner, false); });
    for (const auto& address : screenSavers) {
        // From any sender and path: some screen savers use the common interface at another path.
        session_->connect(QString(), QString(), address.interface, "ActiveChanged", this,
                          SLOT(onScreenSaver(bool, QDBusMessage)));
        askScreenSaver(address.interface, address.path);
    }
}

void SessionLockListener::askScreenSaver(const QString& interface, const QString& path) {
    callAsync(*session_, methodCall(interface, path, interface, "GetActive", {}), *this,
              [this](const QDBusMessage& reply) {
                  if (const auto isActive = valueOf<bool>(reply)) {
                      setScreenSaverActive(reply.service(), *isActive);
                  }
              });
}

void SessionLockListener::onLock() {
    setLockedBySession(true);
}

void SessionLockListener::onUnlock() {
    setLockedBySession(false);
}

void SessionLockListener::onPrepareForSleep(bool isStarting) {
    // The screen is locked before the machine sleeps, so the locker starts now.
    setGoingToSleep(isStarting);
}

void SessionLockListener::onSessionProperties(const QString& interface, const QVariantMap& changed,
                                              const QStringList& /*invalidated*/) {
    if (interface == loginSessionInterface && changed.contains(lockedHint)) {
        setLockedBySession(changed.value(lockedHint).toBool());
    }
}

void SessionLockListener::onScreenSaver(bool isActive, const QDBusMessage& message) {
    setScreenSaverActive(message.service(), isActive);
}

void SessionLockListener::setLockedBySession(bool isLocked) {
    if (isLocked) {
        onLocking_();
    }
    isLockedBySession_ = isLocked;
    reportIfChanged();
}

void SessionLockListener::setGoingToSleep(bool isGoingToSleep) {
    if (isGoingToSleep) {
        onLocking_();
    }
    isGoingToSleep_ = isGoingToSleep;
    reportIfChanged();
}

void SessionLockListener::setScreenSaverActive(const QString& owner, bool isActive) {
    if (!session_) {
        return;  // a late message from a bus that is no longer connected
    }
    if (isActive) {
        onLocking_();
    }
    if (!isActive) {
        activeScreenSavers_.remove(owner);
        ownerWatcher_->removeWatchedService(owner);
    } else if (!activeScreenSavers_.contains(owner)) {
        activeScreenSavers_.insert(owner);
        ownerWatcher_->addWatchedService(owner);
        // It may have left the bus before it was watched. No signal would report that, and the session would stay
        // locked.
        callAsync(*session_, callToBus("NameHasOwner", owner), *this, [this, owner](const QDBusMessage& reply) {
            if (valueOf<bool>(reply) == false) {
                setScreenSaverActive(owner, false);
            }
        });
    }
    reportIfChanged();
}

void SessionLockListener::reportIfChanged() {
    const bool isLocked = isLockedBySession_ || isGoingToSleep_ || !activeScreenSavers_.isEmpty();
    if (std::exchange(isLocked_, isLocked) != isLocked) {
        onChange_(isLocked);
    }
}

}  // namespace ferrowyn

// The meta-objects of the classes above, generated by moc.
#include "session_lock.moc"

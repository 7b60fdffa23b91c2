#include "platform/linux/session_lock.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusServiceWatcher>
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

/// Listens on the buses. Lives on a thread of its own, on which it also tells.
class SessionLockListener final : public QObject {
    Q_OBJECT

public:
    using Told = std::function<void(bool isLocked)>;

    /// `told` hears the first state when it is "locked", and each change; `onLocking` each word of a lock, also of one
    /// that is known already.
    SessionLockListener(SessionLock::Buses buses, Told told, std::function<void()> onLocking);
    ~SessionLockListener() override;

    /// Connects, and again after a bus was restarted; slow where a bus is. On the listener's thread.
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
    void tellIfChanged();

    SessionLock::Buses buses_;
    Told told_;
    std::function<void()> onLocking_;
    std::optional<QDBusConnection> system_;
    std::optional<QDBusConnection> session_;
    std::unique_ptr<BusLink> systemLink_;
    std::unique_ptr<BusLink> sessionLink_;
    std::unique_ptr<QDBusServiceWatcher> ownerWatcher_;
    bool isLockedBySession_ = false;
    bool isGoingToSleep_ = false;
    /// The bus names of the screen savers that are active: one that crashes takes its lock with it.
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
    // What the listener posts may arrive after this object is gone.
    const auto take = life_.guard([this](bool isLocked) { setLocked(isLocked); });
    auto* const listener = new SessionLockListener(
        buses, [&mainLoop, take](bool isLocked) { mainLoop.post([take, isLocked] { take(isLocked); }); },
        std::move(onLocking));
    thread_ = std::make_unique<BusThread>("ferrowyn-lock", listener, [listener] { listener->start(); });
}

SessionLock::~SessionLock() = default;

Subscription SessionLock::observe(std::function<void(bool)> handler) const {
    return changes_.subscribe([handler = std::move(handler)](const bool& isLocked) { handler(isLocked); });
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
const QString propertiesInterface = QStringLiteral("org.freedesktop.DBus.Properties");
const QString lockedHint = QStringLiteral("LockedHint");

struct ScreenSaverAddress {
    const char* interface;
    const char* path;
};
/// The common name, and the ones of desktops that never took it over.
constexpr std::array<ScreenSaverAddress, 5> screenSavers{{
    {"org.freedesktop.ScreenSaver", "/org/freedesktop/ScreenSaver"},
    {"org.gnome.ScreenSaver", "/org/gnome/ScreenSaver"},
    {"org.cinnamon.ScreenSaver", "/org/cinnamon/ScreenSaver"},
    {"org.mate.ScreenSaver", "/org/mate/ScreenSaver"},
    {"org.xfce.ScreenSaver", "/org/xfce/ScreenSaver"},
}};

/// Asks without starting a service that does not run, and hands over the answer; an error is no answer.
template <typename Answer, typename Handler>
void ask(QObject* receiver, const QDBusConnection& bus, QDBusMessage message, Handler handler) {
    message.setAutoStartService(false);
    auto* watcher = new QDBusPendingCallWatcher(bus.asyncCall(message), receiver);
    QObject::connect(watcher, &QDBusPendingCallWatcher::finished, receiver,
                     [handler = std::move(handler)](QDBusPendingCallWatcher* finished) {
                         const QDBusPendingReply<Answer> reply = *finished;
                         if (!reply.isError()) {
                             handler(reply.value(), reply.reply());
                         }
                         finished->deleteLater();
                     });
}

}  // namespace

SessionLockListener::SessionLockListener(SessionLock::Buses buses, Told told, std::function<void()> onLocking)
    : buses_(std::move(buses)), told_(std::move(told)), onLocking_(std::move(onLocking)) {}

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

/// The word that the machine is awake again may be lost. Whether the session is locked is asked on the next bus.
void SessionLockListener::forgetLoginManager() {
    system_.reset();
    setGoingToSleep(false);
}

/// Those that are still there have other names on the next bus.
void SessionLockListener::forgetScreenSavers() {
    ownerWatcher_.reset();
    session_.reset();
    activeScreenSavers_.clear();
    tellIfChanged();
}

void SessionLockListener::listenToLoginManager() {
    system_->connect(loginService, loginManagerPath, loginManagerInterface, "PrepareForSleep", this,
                     SLOT(onPrepareForSleep(bool)));
    const auto listen = [this](const QDBusObjectPath& session, const QDBusMessage&) {
        if (system_) {
            listenToSession(session.path());
        }
    };
    const auto id = qEnvironmentVariable("XDG_SESSION_ID");
    const auto callToManager = [](const QString& method, const QVariant& argument) {
        return methodCall(loginService, loginManagerPath, loginManagerInterface, method, {argument});
    };
    // Process 0 stands for the one that asks.
    ask<QDBusObjectPath>(this, *system_,
                         id.isEmpty() ? callToManager("GetSessionByPID", 0U) : callToManager("GetSession", id), listen);
}

void SessionLockListener::listenToSession(const QString& path) {
    system_->connect(loginService, path, loginSessionInterface, "Lock", this, SLOT(onLock()));
    system_->connect(loginService, path, loginSessionInterface, "Unlock", this, SLOT(onUnlock()));
    system_->connect(loginService, path, propertiesInterface, "PropertiesChanged", this,
                     SLOT(onSessionProperties(QString, QVariantMap, QStringList)));
    ask<QDBusVariant>(
        this, *system_, methodCall(loginService, path, propertiesInterface, "Get", {loginSessionInterface, lockedHint}),
        [this](const QDBusVariant& value, const QDBusMessage&) { setLockedBySession(value.variant().toBool()); });
}

void SessionLockListener::listenToScreenSavers() {
    ownerWatcher_ = std::make_unique<QDBusServiceWatcher>();
    ownerWatcher_->setConnection(*session_);
    ownerWatcher_->setWatchMode(QDBusServiceWatcher::WatchForUnregistration);
    connect(ownerWatcher_.get(), &QDBusServiceWatcher::serviceUnregistered, this,
            [this](const QString& owner) { setScreenSaverActive(owner, false); });
    for (const auto& address : screenSavers) {
        // From any sender and path: not all keep to the path of the common name.
        session_->connect(QString(), QString(), address.interface, "ActiveChanged", this,
                          SLOT(onScreenSaver(bool, QDBusMessage)));
        askScreenSaver(address.interface, address.path);
    }
}

void SessionLockListener::askScreenSaver(const QString& interface, const QString& path) {
    ask<bool>(this, *session_, methodCall(interface, path, interface, "GetActive", {}),
              [this](bool isActive, const QDBusMessage& reply) { setScreenSaverActive(reply.service(), isActive); });
}

void SessionLockListener::onLock() {
    setLockedBySession(true);
}

void SessionLockListener::onUnlock() {
    setLockedBySession(false);
}

void SessionLockListener::onPrepareForSleep(bool isStarting) {
    // The locker of a machine that goes to sleep starts now.
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
    tellIfChanged();
}

void SessionLockListener::setGoingToSleep(bool isGoingToSleep) {
    if (isGoingToSleep) {
        onLocking_();
    }
    isGoingToSleep_ = isGoingToSleep;
    tellIfChanged();
}

void SessionLockListener::setScreenSaverActive(const QString& owner, bool isActive) {
    if (!session_) {
        return;  // word from a bus that has gone meanwhile
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
        // It may have gone before it was watched: nobody would tell, and the session would count as locked for good.
        ask<bool>(this, *session_, callToBus("NameHasOwner", owner), [this, owner](bool isThere, const QDBusMessage&) {
            if (!isThere) {
                setScreenSaverActive(owner, false);
            }
        });
    }
    tellIfChanged();
}

void SessionLockListener::tellIfChanged() {
    const bool isLocked = isLockedBySession_ || isGoingToSleep_ || !activeScreenSavers_.isEmpty();
    if (std::exchange(isLocked_, isLocked) != isLocked) {
        told_(isLocked);
    }
}

}  // namespace ferrowyn

// The meta-objects of the classes above.
#include "session_lock.moc"

#include "platform/linux/session_lock_listener.h"

#include <QDBusObjectPath>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QStringList>
#include <QVariant>
#include <array>
#include <utility>

#include "platform/linux/bus_call.h"
#include "platform/linux/bus_link.h"

namespace ferrowyn {

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

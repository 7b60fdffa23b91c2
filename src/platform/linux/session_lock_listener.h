#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusServiceWatcher>
#include <QObject>
#include <QSet>
#include <QString>
#include <QVariantMap>
#include <functional>
#include <memory>
#include <optional>

#include "platform/linux/session_lock.h"

namespace ferrowyn {

class BusLink;

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

}  // namespace ferrowyn

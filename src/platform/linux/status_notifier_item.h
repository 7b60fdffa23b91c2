#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QObject>
#include <QString>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "platform/linux/status_notifier_object.h"

class QDBusServiceWatcher;

namespace ferrowyn {

class BackgroundWork;
class BusLink;
class MainLoop;

/// Who shows status notifiers.
enum class StatusNotifierHost {
    none,
    /// Hands over presses of both buttons.
    present,
    /// Xfce's panel: it answers the second button with a menu of its own.
    keepsSecondButton,
};

/// The program's icon as a status notifier on the session bus: offered to every watcher that comes, shown by whatever
/// host that watcher knows. To one that keeps the second button it is offered only on request. Main thread; connecting,
/// which waits for the bus, is done on a worker thread, and again after the bus was restarted.
class StatusNotifierItem final : public QObject {
    Q_OBJECT

public:
    /// Connects at once to the bus with this address; nothing where there is none. The references outlive this.
    StatusNotifierItem(MainLoop& mainLoop, BackgroundWork& backgroundWork,
                       const std::optional<std::string>& busAddress);
    ~StatusNotifierItem() override;
    StatusNotifierItem(const StatusNotifierItem&) = delete;
    StatusNotifierItem& operator=(const StatusNotifierItem&) = delete;

    [[nodiscard]] StatusNotifierObject& object() { return *object_; }

    /// Nothing until the bus has answered for the first time.
    [[nodiscard]] std::optional<StatusNotifierHost> host() const { return host_; }
    /// Told when that becomes known and at each change. Set before the main loop runs again.
    void setHostHandler(std::function<void(StatusNotifierHost)> handler) { onHost_ = std::move(handler); }
    /// Offers the icon to the watcher that is there now.
    void offer();

private slots:
    void onHostsChanged();

private:
    void connected(const QDBusConnection& bus);
    void disconnected();
    void askForWatcher();
    void watcherChanged(const QString& owner);
    void askForWatcherProcess(const QString& owner);
    void askForHost();
    void setHost(StatusNotifierHost host);
    /// Calls back with what the bus answers; nothing for an error, and not at all when the watcher has changed since.
    template <typename Answer>
    void ask(const QDBusMessage& question, std::function<void(const std::optional<Answer>&)> answered);

    std::function<void(StatusNotifierHost)> onHost_;
    std::optional<StatusNotifierHost> host_;
    bool watcherKeepsSecondButton_ = false;
    /// Counts the watchers that came and went, so that late answers about one are not taken for another's.
    int watcherCount_ = 0;
    std::optional<QDBusConnection> bus_;
    QString serviceName_;
    std::unique_ptr<QDBusServiceWatcher> ownerWatcher_;
    /// What is registered on the bus, with the interface as its adaptor.
    QObject exported_;
    StatusNotifierObject* object_;
    /// Dies with this, for what is posted.
    std::shared_ptr<bool> alive_ = std::make_shared<bool>(true);
    std::unique_ptr<BusLink> link_;
};

}  // namespace ferrowyn

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
class MainLoop;

/// The program's icon as a status notifier on the session bus: offered to every watcher that comes, shown by whatever
/// host that watcher knows. Main thread; connecting, which waits for the bus, is done on a worker thread.
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

    /// Whether some host shows the icon now; nothing until the bus has answered for the first time.
    [[nodiscard]] std::optional<bool> hasHost() const { return hasHost_; }
    /// Told when that becomes known and at each change. Set before the main loop runs again.
    void setHostHandler(std::function<void(bool hasHost)> handler) { onHost_ = std::move(handler); }

private slots:
    void onHostsChanged();
    void onDisconnected();

private:
    void connected(const QDBusConnection& bus);
    void watcherChanged(const QString& owner);
    void askForWatcher();
    void registerAtWatcher();
    void askForHost();
    void setHasHost(bool hasHost);

    std::function<void(bool)> onHost_;
    std::optional<bool> hasHost_;
    std::optional<QDBusConnection> bus_;
    QString serviceName_;
    std::unique_ptr<QDBusServiceWatcher> ownerWatcher_;
    /// What is registered on the bus, with the interface as its adaptor.
    QObject exported_;
    StatusNotifierObject* object_;
    /// Dies with this, for what a worker posts.
    std::shared_ptr<bool> alive_ = std::make_shared<bool>(true);
};

}  // namespace ferrowyn

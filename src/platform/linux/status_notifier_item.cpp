#include "platform/linux/status_notifier_item.h"

#include <unistd.h>

#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusServiceWatcher>
#include <QDBusVariant>
#include <QVariant>
#include <atomic>
#include <utility>

#include "platform/background_work.h"
#include "platform/main_loop.h"

namespace ferrowyn {

namespace {

const QString watcherService = QStringLiteral("org.kde.StatusNotifierWatcher");
const QString watcherPath = QStringLiteral("/StatusNotifierWatcher");
const QString watcherInterface = QStringLiteral("org.kde.StatusNotifierWatcher");
const QString itemPath = QStringLiteral("/StatusNotifierItem");
const QString propertiesInterface = QStringLiteral("org.freedesktop.DBus.Properties");

/// Connections are known by name within the process, items by number within it.
int nextNumber() {
    static std::atomic<int> count{0};
    return ++count;
}

QDBusMessage callToWatcher(const QString& interface, const QString& method, const QVariantList& arguments) {
    auto message = QDBusMessage::createMethodCall(watcherService, watcherPath, interface, method);
    message.setArguments(arguments);
    message.setAutoStartService(false);
    return message;
}

}  // namespace

StatusNotifierItem::StatusNotifierItem(MainLoop& mainLoop, BackgroundWork& backgroundWork,
                                       const std::optional<std::string>& busAddress)
    : object_(new StatusNotifierObject(exported_)) {  // NOLINT: its parent owns it.
    const std::weak_ptr<bool> alive = alive_;
    if (!busAddress) {
        mainLoop.post([this, alive] {
            if (!alive.expired()) {
                setHasHost(false);
            }
        });
        return;
    }
    const int number = nextNumber();
    serviceName_ = QStringLiteral("org.kde.StatusNotifierItem-%1-%2").arg(getpid()).arg(number);
    const QString connectionName = QStringLiteral("ferrowyn-status-notifier-%1").arg(number);
    backgroundWork.run([this, alive, &mainLoop, connectionName, address = QString::fromStdString(*busAddress)] {
        const auto bus = QDBusConnection::connectToBus(address, connectionName);
        mainLoop.post([this, alive, bus] {
            if (alive.expired()) {
                QDBusConnection::disconnectFromBus(bus.name());
            } else {
                connected(bus);
            }
        });
    });
}

StatusNotifierItem::~StatusNotifierItem() {
    ownerWatcher_.reset();
    if (bus_) {
        const QString name = bus_->name();
        bus_.reset();
        QDBusConnection::disconnectFromBus(name);
    }
}

void StatusNotifierItem::connected(const QDBusConnection& bus) {
    bus_ = bus;
    if (!bus_->isConnected() || !bus_->registerService(serviceName_)) {
        setHasHost(false);
        return;
    }
    bus_->registerObject(itemPath, &exported_, QDBusConnection::ExportAdaptors);
    bus_->connect(QString(), QStringLiteral("/org/freedesktop/DBus/Local"),
                  QStringLiteral("org.freedesktop.DBus.Local"), QStringLiteral("Disconnected"), this,
                  SLOT(onDisconnected()));
    for (const char* const signal : {"StatusNotifierHostRegistered", "StatusNotifierHostUnregistered"}) {
        bus_->connect(watcherService, watcherPath, watcherInterface, QLatin1String(signal), this,
                      SLOT(onHostsChanged()));
    }
    ownerWatcher_ = std::make_unique<QDBusServiceWatcher>(watcherService, *bus_);
    connect(ownerWatcher_.get(), &QDBusServiceWatcher::serviceOwnerChanged, this,
            [this](const QString& /*service*/, const QString& /*oldOwner*/, const QString& newOwner) {
                watcherChanged(newOwner);
            });
    askForWatcher();
}

void StatusNotifierItem::askForWatcher() {
    auto message =
        QDBusMessage::createMethodCall(QStringLiteral("org.freedesktop.DBus"), QStringLiteral("/org/freedesktop/DBus"),
                                       QStringLiteral("org.freedesktop.DBus"), QStringLiteral("GetNameOwner"));
    message.setArguments({watcherService});
    auto* const waiting = new QDBusPendingCallWatcher(bus_->asyncCall(message), this);
    connect(waiting, &QDBusPendingCallWatcher::finished, this, [this, waiting] {
        const QDBusPendingReply<QString> reply = *waiting;
        watcherChanged(reply.isError() ? QString() : reply.value());
        waiting->deleteLater();
    });
}

void StatusNotifierItem::watcherChanged(const QString& owner) {
    if (owner.isEmpty()) {
        setHasHost(false);
        return;
    }
    registerAtWatcher();
    askForHost();
}

void StatusNotifierItem::registerAtWatcher() {
    bus_->asyncCall(callToWatcher(watcherInterface, QStringLiteral("RegisterStatusNotifierItem"), {serviceName_}));
}

void StatusNotifierItem::askForHost() {
    const auto message = callToWatcher(propertiesInterface, QStringLiteral("Get"),
                                       {watcherInterface, QStringLiteral("IsStatusNotifierHostRegistered")});
    auto* const waiting = new QDBusPendingCallWatcher(bus_->asyncCall(message), this);
    connect(waiting, &QDBusPendingCallWatcher::finished, this, [this, waiting] {
        const QDBusPendingReply<QDBusVariant> reply = *waiting;
        setHasHost(!reply.isError() && reply.value().variant().toBool());
        waiting->deleteLater();
    });
}

void StatusNotifierItem::onHostsChanged() {
    askForHost();
}

void StatusNotifierItem::onDisconnected() {
    setHasHost(false);
}

void StatusNotifierItem::setHasHost(bool hasHost) {
    if (std::exchange(hasHost_, hasHost) != hasHost && onHost_) {
        onHost_(hasHost);
    }
}

}  // namespace ferrowyn

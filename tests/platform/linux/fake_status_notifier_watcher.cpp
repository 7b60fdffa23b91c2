#include "tests/platform/linux/fake_status_notifier_watcher.h"

#include <QCoreApplication>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>

namespace ferrowyn::test {

namespace {

QString nextConnectionName() {
    static int count = 0;
    return QStringLiteral("fake-watcher-%1").arg(++count);
}

}  // namespace

FakeStatusNotifierWatcher::FakeStatusNotifierWatcher(const QString& busAddress, bool hasHost)
    : hasHost_(hasHost),
      connectionName_(nextConnectionName()),
      bus_(QDBusConnection::connectToBus(busAddress, connectionName_)) {
    bus_.registerObject(
        "/StatusNotifierWatcher", this,
        QDBusConnection::ExportAllProperties | QDBusConnection::ExportAllSignals | QDBusConnection::ExportAllSlots);
    bus_.registerService("org.kde.StatusNotifierWatcher");
}

FakeStatusNotifierWatcher::~FakeStatusNotifierWatcher() {
    QDBusConnection::disconnectFromBus(connectionName_);
}

void FakeStatusNotifierWatcher::setHasHost(bool hasHost) {
    hasHost_ = hasHost;
    if (hasHost) {
        emit StatusNotifierHostRegistered();
    } else {
        emit StatusNotifierHostUnregistered();
    }
}

QVariantMap FakeStatusNotifierWatcher::propertiesOfItem() const {
    auto message = QDBusMessage::createMethodCall(items_.front(), "/StatusNotifierItem",
                                                  "org.freedesktop.DBus.Properties", "GetAll");
    message.setArguments({"org.kde.StatusNotifierItem"});
    const QDBusPendingCallWatcher waiting(bus_.asyncCall(message));
    // Not blocking: the item answers on this thread.
    while (!waiting.isFinished()) {
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
    return QDBusPendingReply<QVariantMap>(waiting).value();
}

void FakeStatusNotifierWatcher::callItem(const QString& method, const QVariantList& arguments) const {
    auto message =
        QDBusMessage::createMethodCall(items_.front(), "/StatusNotifierItem", "org.kde.StatusNotifierItem", method);
    message.setArguments(arguments);
    bus_.asyncCall(message);
}

void FakeStatusNotifierWatcher::listenToItem() {
    for (const char* const signal : {"NewIcon", "NewToolTip"}) {
        bus_.connect(items_.front(), "/StatusNotifierItem", "org.kde.StatusNotifierItem", signal, this,
                     SLOT(onSignal(QDBusMessage)));
    }
}

}  // namespace ferrowyn::test

#include "platform/linux/bus.h"

#include <QDBusPendingCallWatcher>
#include <QRegularExpression>
#include <algorithm>
#include <atomic>
#include <utility>

namespace ferrowyn {

QDBusMessage methodCall(const QString& service, const QString& path, const QString& interface, const QString& method,
                        const QVariantList& arguments) {
    auto message = QDBusMessage::createMethodCall(service, path, interface, method);
    message.setArguments(arguments);
    message.setAutoStartService(false);
    return message;
}

QDBusMessage propertyCall(const QString& service, const QString& path, const QString& interface,
                          const QString& property) {
    return methodCall(service, path, propertiesInterface, QStringLiteral("Get"), {interface, property});
}

QDBusMessage callToBus(const QString& method, const QString& argument) {
    const auto bus = QStringLiteral("org.freedesktop.DBus");
    return methodCall(bus, QStringLiteral("/org/freedesktop/DBus"), bus, method, {argument});
}

void callAsync(const QDBusConnection& bus, const QDBusMessage& call, QObject& receiver,
               std::function<void(const QDBusMessage& reply)> onReply,
               std::optional<std::chrono::milliseconds> timeout) {
    // -1 stands for the library's timeout.
    const int milliseconds = timeout ? static_cast<int>(timeout->count()) : -1;
    auto* const watcher = new QDBusPendingCallWatcher(bus.asyncCall(call, milliseconds), &receiver);
    QObject::connect(watcher, &QDBusPendingCallWatcher::finished, &receiver,
                     [onReply = std::move(onReply)](QDBusPendingCallWatcher* finished) {
                         finished->deleteLater();
                         onReply(finished->reply());
                     });
}

namespace {

using std::chrono::milliseconds;

/// How long the program's end waits for a thread that is blocked by its bus.
constexpr milliseconds threadEndTimeout{1000};
constexpr milliseconds firstPause{250};
constexpr milliseconds longestPause{30'000};

/// Qt knows connections by name, within the process.
QString nextConnectionName(const QString& purpose) {
    static std::atomic<int> count{0};
    return QStringLiteral("ferrowyn-%1-%2").arg(purpose).arg(++count);
}

}  // namespace

BusThread::BusThread(const char* name, QObject* listener, std::function<void()> start)
    : thread_(std::make_unique<QThread>()) {
    thread_->setObjectName(name);
    listener->moveToThread(thread_.get());
    QObject::connect(thread_.get(), &QThread::started, listener, std::move(start));
    QObject::connect(thread_.get(), &QThread::finished, listener, &QObject::deleteLater);
    thread_->start(QThread::LowPriority);
}

BusThread::~BusThread() {
    thread_->quit();
    if (!thread_->wait(static_cast<unsigned long>(threadEndTimeout.count()))) {
        // A bus that does not answer still blocks the thread. Leaking it lets the program end; destroying a running
        // QThread would abort.
        static_cast<void>(thread_.release());
    }
}

QString withoutBusIdentity(const std::string& address) {
    static const QRegularExpression identity(QStringLiteral(",guid=[^,;]*"));
    return QString::fromStdString(address).remove(identity);
}

BusLink::BusLink(const std::string& address, QString purpose, Handlers handlers, Worker worker)
    : address_(withoutBusIdentity(address)),
      purpose_(std::move(purpose)),
      handlers_(std::move(handlers)),
      worker_(std::move(worker)),
      pause_(firstPause) {
    timer_.setSingleShot(true);
    connect(&timer_, &QTimer::timeout, this, [this] { tryToConnect(); });
}

BusLink::~BusLink() {
    closeConnection();
}

void BusLink::start() {
    tryToConnect();
}

void BusLink::tryToConnect() {
    closeConnection();
    const QString name = nextConnectionName(purpose_);
    const auto work = [address = address_, name] { QDBusConnection::connectToBus(address, name); };
    const auto done = [this, name, life = life_.watch()] {
        if (!life.isAlive()) {
            QDBusConnection::disconnectFromBus(name);
        } else {
            onTried(name);
        }
    };
    if (worker_) {
        worker_(work, done);
    } else {
        work();
        done();
    }
}

void BusLink::onTried(const QString& name) {
    bus_.emplace(name);
    bus_->connect(QString(), QStringLiteral("/org/freedesktop/DBus/Local"),
                  QStringLiteral("org.freedesktop.DBus.Local"), QStringLiteral("Disconnected"), this,
                  SLOT(onDisconnected()));
    // The connection may have failed, or ended before the signal was connected.
    if (!bus_->isConnected()) {
        onDisconnected();
        return;
    }
    pause_ = firstPause;
    isLossReported_ = false;
    handlers_.connected(*bus_);
}

void BusLink::onDisconnected() {
    if (!std::exchange(isLossReported_, true)) {
        handlers_.lost();
    }
    retryLater();
}

void BusLink::retryLater() {
    timer_.start(pause_);
    pause_ = std::min(pause_ * 2, longestPause);
}

void BusLink::closeConnection() {
    if (bus_) {
        const QString name = bus_->name();
        bus_.reset();
        QDBusConnection::disconnectFromBus(name);
    }
}

}  // namespace ferrowyn

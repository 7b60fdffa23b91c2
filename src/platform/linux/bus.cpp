#include "platform/linux/bus.h"

#include <QRegularExpression>
#include <algorithm>
#include <atomic>
#include <utility>

namespace ferrowyn {

QDBusMessage methodCall(const QString& service, const QString& path, const QString& interface, const QString& method,
                        const QVariantList& arguments) {
    auto message = QDBusMessage::createMethodCall(service, path, interface, method);
    message.setArguments(arguments);
    return message;
}

QDBusMessage callToBus(const QString& method, const QString& argument) {
    const auto bus = QStringLiteral("org.freedesktop.DBus");
    return methodCall(bus, QStringLiteral("/org/freedesktop/DBus"), bus, method, {argument});
}

namespace {

/// Milliseconds.
constexpr unsigned long patienceWithBuses = 1000;

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
    if (!thread_->wait(patienceWithBuses)) {
        // It still waits for a bus that does not answer. The program is ending: better it ends without it.
        static_cast<void>(thread_.release());
    }
}

namespace {

using std::chrono::milliseconds;

constexpr milliseconds firstPause{250};
constexpr milliseconds longestPause{30'000};

/// Connections are known by name within the process.
QString nextConnectionName(const QString& purpose) {
    static std::atomic<int> count{0};
    return QStringLiteral("ferrowyn-%1-%2").arg(purpose).arg(++count);
}

}  // namespace

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
    drop();
}

void BusLink::start() {
    tryToConnect();
}

void BusLink::tryToConnect() {
    drop();
    const QString name = nextConnectionName(purpose_);
    const auto work = [address = address_, name] { QDBusConnection::connectToBus(address, name); };
    const auto done = [this, name, life = life_.watch()] {
        if (!life.isAlive()) {
            QDBusConnection::disconnectFromBus(name);
        } else {
            tried(name);
        }
    };
    if (worker_) {
        worker_(work, done);
    } else {
        work();
        done();
    }
}

void BusLink::tried(const QString& name) {
    bus_.emplace(name);
    bus_->connect(QString(), QStringLiteral("/org/freedesktop/DBus/Local"),
                  QStringLiteral("org.freedesktop.DBus.Local"), QStringLiteral("Disconnected"), this,
                  SLOT(onDisconnected()));
    // It may have gone before it was listened to.
    if (!bus_->isConnected()) {
        onDisconnected();
        return;
    }
    pause_ = firstPause;
    isLossTold_ = false;
    handlers_.connected(*bus_);
}

void BusLink::onDisconnected() {
    if (!std::exchange(isLossTold_, true)) {
        handlers_.lost();
    }
    tryLater();
}

void BusLink::tryLater() {
    timer_.start(pause_);
    pause_ = std::min(pause_ * 2, longestPause);
}

void BusLink::drop() {
    if (bus_) {
        const QString name = bus_->name();
        bus_.reset();
        QDBusConnection::disconnectFromBus(name);
    }
}

}  // namespace ferrowyn

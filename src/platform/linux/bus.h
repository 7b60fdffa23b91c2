#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusReply>
#include <QObject>
#include <QString>
#include <QThread>
#include <QTimer>
#include <QVariantList>
#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "core/posted_work.h"

namespace ferrowyn {

/// The standard interface for reading properties and hearing of their changes.
inline const QString propertiesInterface = QStringLiteral("org.freedesktop.DBus.Properties");

/// A method call that does not start the service when it is not running.
[[nodiscard]] QDBusMessage methodCall(const QString& service, const QString& path, const QString& interface,
                                      const QString& method, const QVariantList& arguments);

/// A call that reads one property.
[[nodiscard]] QDBusMessage propertyCall(const QString& service, const QString& path, const QString& interface,
                                        const QString& property);

/// A call to the bus daemon: a method of org.freedesktop.DBus that takes one text.
[[nodiscard]] QDBusMessage callToBus(const QString& method, const QString& argument);

/// Sends `call` and returns at once. `onReply` is called once, on the thread of `receiver`, with the reply or with an
/// error message (a timeout is one too); it is not called when `receiver` is destroyed first. Call this on the thread
/// of `receiver`. Without a timeout the library's own applies.
void callAsync(const QDBusConnection& bus, const QDBusMessage& call, QObject& receiver,
               std::function<void(const QDBusMessage& reply)> onReply,
               std::optional<std::chrono::milliseconds> timeout = std::nullopt);

/// The first value of a reply; nullopt when the reply is an error or its value has another type.
template <typename Value>
[[nodiscard]] std::optional<Value> valueOf(const QDBusMessage& reply) {
    const QDBusReply<Value> value = reply;
    return value.isValid() ? std::optional<Value>(value.value()) : std::nullopt;
}

/// Runs a thread for one object that uses a bus. Connecting to a bus blocks, and a bus that does not answer must not
/// block the program.
class BusThread {
public:
    /// Moves `listener` to the new thread, which deletes it when it ends, and calls `start` there.
    BusThread(const char* name, QObject* listener, std::function<void()> start);
    ~BusThread();
    BusThread(const BusThread&) = delete;
    BusThread& operator=(const BusThread&) = delete;

private:
    std::unique_ptr<QThread> thread_;
};

/// The address without its "guid" part, which identifies one run of the bus: after a restart the bus has another one.
[[nodiscard]] QString withoutBusIdentity(const std::string& address);

/// Keeps a connection to a bus and connects again after the bus was missing or restarted. There is no event for a new
/// bus, so it retries, with growing pauses. Each connection is a new one: the user registers and asks everything again.
/// Used on one thread; the handlers run there.
class BusLink final : public QObject {
    Q_OBJECT

public:
    struct Handlers {
        std::function<void(QDBusConnection& bus)> connected;
        /// The connection was lost, or the first attempt failed. Called once until the next connection.
        std::function<void()> lost;
    };
    /// Runs `work`, which blocks until the bus answers, and then calls `done` on the link's thread.
    using Worker = std::function<void(std::function<void()> work, std::function<void()> done)>;

    /// `purpose` becomes part of the connection names. Without a worker, connecting blocks the link's thread.
    BusLink(const std::string& address, QString purpose, Handlers handlers, Worker worker = nullptr);
    ~BusLink() override;
    BusLink(const BusLink&) = delete;
    BusLink& operator=(const BusLink&) = delete;

    /// Makes the first attempt to connect.
    void start();

private slots:
    void onDisconnected();

private:
    void tryToConnect();
    void onTried(const QString& name);
    void retryLater();
    void closeConnection();

    QString address_;
    QString purpose_;
    Handlers handlers_;
    Worker worker_;
    std::optional<QDBusConnection> bus_;
    bool isLossReported_ = false;
    std::chrono::milliseconds pause_;
    QTimer timer_;
    /// A worker may finish after this object is destroyed.
    LifeToken life_;
};

}  // namespace ferrowyn

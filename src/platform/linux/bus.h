#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
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

QDBusMessage methodCall(const QString& service, const QString& path, const QString& interface, const QString& method,
                        const QVariantList& arguments);

/// A call of the bus itself, which knows who is on it: `method` of org.freedesktop.DBus, with its one argument.
QDBusMessage callToBus(const QString& method, const QString& argument);

/// A thread on which an object speaks to a bus: even connecting to one waits for it, and a bus that does not answer
/// must not hold up the program.
class BusThread {
public:
    /// `listener` lives on the thread from now on, and dies with it; `start` is called there first.
    BusThread(const char* name, QObject* listener, std::function<void()> start);
    ~BusThread();
    BusThread(const BusThread&) = delete;
    BusThread& operator=(const BusThread&) = delete;

private:
    std::unique_ptr<QThread> thread_;
};

/// An address may carry the identity of the one bus that said it. The bus that follows it there has another.
[[nodiscard]] QString withoutBusIdentity(const std::string& address);

/// Keeps a connection to a bus. When the bus is not there, or goes (it was restarted, say), it is looked for again:
/// soon at first, more and more rarely later, as nothing tells when a bus comes. Each connection is a new one, on which
/// everything has to be registered and asked anew. Lives on one thread, on which it also tells.
class BusLink final : public QObject {
    Q_OBJECT

public:
    struct Handlers {
        std::function<void(QDBusConnection& bus)> connected;
        /// The bus has gone, or was not there at the first try.
        std::function<void()> lost;
    };
    /// Carries out `work`, which waits for the bus, and then calls `done` on the link's thread.
    using Worker = std::function<void(std::function<void()> work, std::function<void()> done)>;

    /// `purpose` names the connections within the process. Without a worker the link's thread waits itself.
    BusLink(const std::string& address, QString purpose, Handlers handlers, Worker worker = nullptr);
    ~BusLink() override;
    BusLink(const BusLink&) = delete;
    BusLink& operator=(const BusLink&) = delete;

    /// Tries for the first time.
    void start();

private slots:
    void onDisconnected();

private:
    void tryToConnect();
    void tried(const QString& name);
    void tryLater();
    void drop();

    QString address_;
    QString purpose_;
    Handlers handlers_;
    Worker worker_;
    std::optional<QDBusConnection> bus_;
    bool isLossTold_ = false;
    std::chrono::milliseconds pause_;
    QTimer timer_;
    /// Dies with this, for what a worker does later.
    LifeToken life_;
};

}  // namespace ferrowyn

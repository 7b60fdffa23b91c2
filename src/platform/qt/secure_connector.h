#pragma once

#include <QNetworkProxy>
#include <QObject>
#include <QSslConfiguration>
#include <QSslSocket>
#include <QString>
#include <QStringList>
#include <QUrl>
#include <functional>
#include <memory>
#include <variant>
#include <vector>

#include "core/subscription.h"

namespace ferrowyn {

class MainLoop;

/// Breaks the connection off, and says no more. It may be called while the socket is telling something.
struct SocketDeleter {
    void operator()(QSslSocket* socket) const;
};
using SecureSocket = std::unique_ptr<QSslSocket, SocketDeleter>;

/// Opens one encrypted connection to the host of an address. Where the name has several addresses, the next one is
/// tried as soon as one has failed or has said nothing for a moment, so that an address that leads nowhere (such as an
/// IPv6 address on many a network) does not use up the time. Main thread; the main loop outlives it.
class SecureConnector {
public:
    /// The connection, or what is wrong, for the user.
    using Result = std::variant<SecureSocket, QString>;
    using Completion = std::function<void(Result)>;

    SecureConnector(MainLoop& mainLoop, const QUrl& address, QNetworkProxy proxy, QSslConfiguration configuration,
                    Completion completion);
    SecureConnector(const SecureConnector&) = delete;
    SecureConnector& operator=(const SecureConnector&) = delete;

    /// Once. Calls back once, also before it returns, and never after this object is gone; the callback may destroy it.
    void start();

private:
    void tryNextAddress();
    void succeed(const QSslSocket* socket);
    void fail(const QSslSocket* socket);
    [[nodiscard]] SecureSocket take(const QSslSocket* socket);
    void complete(Result result);

    MainLoop& mainLoop_;
    QString host_;
    quint16 port_;
    QNetworkProxy proxy_;
    QSslConfiguration configuration_;
    Completion completion_;
    /// Ends the lookup of the name with this object.
    QObject lookup_;
    QStringList addresses_;
    qsizetype nextAddress_ = 0;
    Subscription patience_;
    std::vector<SecureSocket> attempts_;
};

}  // namespace ferrowyn

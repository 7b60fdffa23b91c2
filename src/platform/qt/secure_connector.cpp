#include "platform/qt/secure_connector.h"

#include <QHostAddress>
#include <QHostInfo>
#include <algorithm>
#include <utility>

#include "platform/main_loop.h"

namespace ferrowyn {

namespace {

constexpr int httpsPort = 443;
/// For the answer of one address before the next one is tried beside it.
constexpr Seconds patience{0.3};

}  // namespace

void SocketDeleter::operator()(QSslSocket* socket) const {
    socket->disconnect();
    socket->abort();
    socket->deleteLater();
}

SecureConnector::SecureConnector(MainLoop& mainLoop, const QUrl& address, QNetworkProxy proxy,
                                 QSslConfiguration configuration, Completion completion)
    : mainLoop_(mainLoop),
      host_(address.host(QUrl::FullyEncoded)),
      port_(static_cast<quint16>(address.port(httpsPort))),
      proxy_(std::move(proxy)),
      configuration_(std::move(configuration)),
      completion_(std::move(completion)) {}

void SecureConnector::start() {
    // A proxy looks names up itself.
    if (proxy_.type() != QNetworkProxy::NoProxy || !QHostAddress(host_).isNull()) {
        addresses_ = {host_};
        tryNextAddress();
        return;
    }
    QHostInfo::lookupHost(host_, &lookup_, [this](const QHostInfo& found) {
        if (found.error() != QHostInfo::NoError) {
            complete(found.errorString());
            return;
        }
        for (const auto& address : found.addresses()) {
            addresses_ += address.toString();
        }
        tryNextAddress();
    });
}

void SecureConnector::tryNextAddress() {
    const auto address = addresses_[nextAddress_++];
    if (nextAddress_ < addresses_.size()) {
        patience_ = mainLoop_.after(patience, [this] { tryNextAddress(); });
    } else {
        patience_.reset();
    }
    auto* const socket = attempts_.emplace_back(new QSslSocket).get();
    socket->setProxy(proxy_);
    socket->setSslConfiguration(configuration_);
    QObject::connect(socket, &QSslSocket::encrypted, socket, [this, socket] { succeed(socket); });
    QObject::connect(socket, &QSslSocket::errorOccurred, socket, [this, socket] { fail(socket); });
    // Last, for it may fail at once.
    socket->connectToHostEncrypted(address, port_, host_);
}

void SecureConnector::succeed(const QSslSocket* socket) {
    auto connection = take(socket);
    connection->disconnect();
    complete(std::move(connection));
}

void SecureConnector::fail(const QSslSocket* socket) {
    const auto failed = take(socket);
    if (nextAddress_ < addresses_.size()) {
        tryNextAddress();
    } else if (attempts_.empty()) {
        complete(failed->errorString());
    }
}

SecureSocket SecureConnector::take(const QSslSocket* socket) {
    const auto found = std::ranges::find(attempts_, socket, &SecureSocket::get);
    auto taken = std::move(*found);
    attempts_.erase(found);
    return taken;
}

void SecureConnector::complete(Result result) {
    patience_.reset();
    attempts_.clear();
    const auto completion = std::exchange(completion_, nullptr);
    completion(std::move(result));
}

}  // namespace ferrowyn

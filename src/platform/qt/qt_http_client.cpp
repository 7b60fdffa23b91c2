#include "platform/qt/qt_http_client.h"

#include <QCoreApplication>
#include <QHostAddress>
#include <QNetworkProxyFactory>
#include <QSslConfiguration>
#include <QUrl>
#include <algorithm>
#include <iterator>
#include <optional>
#include <utility>

#include "platform/background_work.h"
#include "platform/main_loop.h"
#include "platform/qt/http_response_parser.h"
#include "platform/qt/qt_name_lookups.h"
#include "platform/qt/secure_connector.h"

namespace ferrowyn {

namespace {

constexpr int mostRedirects = 10;

HttpFailure failure(const char* text) {
    return {QCoreApplication::translate("QtHttpClient", text).toStdString()};
}

bool isSecure(const QUrl& address) {
    return address.isValid() && address.scheme() == "https" && !address.host().isEmpty();
}

/// To set a list of authorities, even an empty one, turns off that the toolkit looks them up in the system's folders
/// when they are needed.
QSslConfiguration configurationWith(const QList<QSslCertificate>& authorities) {
    auto configuration = QSslConfiguration::defaultConfiguration();
    if (!authorities.empty()) {
        configuration.setCaCertificates(authorities);
    }
    return configuration;
}

/// All that is sent: the address, and what the protocol itself asks for. In particular no name of the program or of the
/// toolkit, and no language.
QByteArray requestFor(const QUrl& address) {
    const auto path = address.path(QUrl::FullyEncoded).toUtf8();
    auto target = path.isEmpty() ? QByteArray("/") : path;
    if (address.hasQuery()) {
        target += "?" + address.query(QUrl::FullyEncoded).toUtf8();
    }
    const auto host = address.authority(QUrl::FullyEncoded | QUrl::RemoveUserInfo).toUtf8();
    return "GET " + target + " HTTP/1.1\r\nHost: " + host + "\r\nConnection: close\r\n\r\n";
}

bool isRedirect(int status) {
    constexpr int statuses[] = {301, 302, 303, 307, 308};
    return std::ranges::find(statuses, status) != std::end(statuses);
}

/// Of those that the system names, in its order, the first through which an encrypted connection can be had.
QNetworkProxy proxyFor(const QUrl& address) {
    const auto proxies = QNetworkProxyFactory::systemProxyForQuery(QNetworkProxyQuery(address));
    const auto found = std::ranges::find_if(proxies, [](const QNetworkProxy& proxy) {
        return proxy.capabilities().testFlag(QNetworkProxy::TunnelingCapability);
    });
    return found != proxies.end() ? *found : QNetworkProxy(QNetworkProxy::NoProxy);
}

}  // namespace

/// One request on its way. The token that the caller holds owns it.
class QtHttpClient::Exchange : public std::enable_shared_from_this<Exchange> {
public:
    using Completion = std::function<void(const HttpResult&)>;

    Exchange(MainLoop& mainLoop, const HttpRequest& request, Completion completion)
        : mainLoop_(mainLoop),
          address_(QString::fromUtf8(request.url.data(), static_cast<qsizetype>(request.url.size())), QUrl::StrictMode),
          largestBody_(request.maximumBodySize),
          completion_(std::move(completion)) {}

    [[nodiscard]] const QUrl& address() const { return address_; }
    void endAfter(Seconds timeout) {
        timeout_ = mainLoop_.after(
            timeout, [this] { finish(failure(QT_TRANSLATE_NOOP("QtHttpClient", "The request timed out."))); });
    }
    void start(const QNetworkProxy& proxy, const QSslConfiguration& configuration);
    /// Tells the caller, once.
    void finish(const HttpResult& result);
    void cancel();

private:
    void connect();
    void send(SecureConnector::Result connection);
    void receive();
    void receiveEnd();
    /// Goes on with what has been read.
    void proceed();
    void redirect();
    [[nodiscard]] HttpResult result() const;
    /// The same for a request whose name lookup, if there was one, is known to be over.
    void settle(const HttpResult& result);

    MainLoop& mainLoop_;
    QUrl address_;
    std::size_t largestBody_;
    Completion completion_;
    Subscription timeout_;
    QNetworkProxy proxy_;
    QSslConfiguration configuration_;
    int redirects_ = 0;
    std::unique_ptr<SecureConnector> connector_;
    SecureSocket socket_;
    std::optional<HttpResponseParser> parser_;
};

void QtHttpClient::Exchange::start(const QNetworkProxy& proxy, const QSslConfiguration& configuration) {
    if (!completion_) {
        return;
    }
    proxy_ = proxy;
    configuration_ = configuration;
    connect();
}

void QtHttpClient::Exchange::connect() {
    if (QHostAddress(address_.host()).isNull()) {
        name_lookups::noteUnderWay();
    }
    socket_.reset();
    parser_.emplace(largestBody_);
    connector_ = std::make_unique<SecureConnector>(mainLoop_, address_, proxy_, configuration_,
                                                   [this](SecureConnector::Result result) { send(std::move(result)); });
    connector_->start();
}

void QtHttpClient::Exchange::send(SecureConnector::Result connection) {
    if (const auto* error = std::get_if<QString>(&connection)) {
        settle(HttpFailure{error->toStdString()});
        return;
    }
    socket_ = std::get<SecureSocket>(std::move(connection));
    QObject::connect(socket_.get(), &QSslSocket::readyRead, socket_.get(), [this] { receive(); });
    QObject::connect(socket_.get(), &QSslSocket::errorOccurred, socket_.get(), [this] { receiveEnd(); });
    socket_->write(requestFor(address_));
}

void QtHttpClient::Exchange::finish(const HttpResult& result) {
    if (const auto completion = std::exchange(completion_, nullptr)) {
        const auto self = shared_from_this();
        cancel();
        completion(result);
    }
}

void QtHttpClient::Exchange::settle(const HttpResult& result) {
    name_lookups::noteDone();
    finish(result);
}

void QtHttpClient::Exchange::cancel() {
    completion_ = nullptr;
    timeout_.reset();
    connector_.reset();
    socket_.reset();
}

void QtHttpClient::Exchange::receive() {
    parser_->take(socket_->readAll().toStdString());
    proceed();
}

void QtHttpClient::Exchange::receiveEnd() {
    parser_->take(socket_->readAll().toStdString());
    if (socket_->error() == QAbstractSocket::RemoteHostClosedError) {
        parser_->end();
    } else if (parser_->state() == HttpResponseParser::State::incomplete) {
        settle(HttpFailure{socket_->errorString().toStdString()});
        return;
    }
    proceed();
}

void QtHttpClient::Exchange::proceed() {
    // The body of a redirect says nothing, however long it is.
    if (parser_->hasHead() && isRedirect(parser_->status()) && !parser_->location().empty()) {
        redirect();
    } else if (parser_->state() != HttpResponseParser::State::incomplete) {
        settle(result());
    }
}

void QtHttpClient::Exchange::redirect() {
    const auto next = address_.resolved(QUrl::fromEncoded(QByteArray::fromStdString(parser_->location())));
    if (!isSecure(next)) {
        settle(failure(QT_TRANSLATE_NOOP("QtHttpClient", "The server redirects to an address that is not secure.")));
    } else if (++redirects_ > mostRedirects) {
        settle(failure(QT_TRANSLATE_NOOP("QtHttpClient", "The server redirects too often.")));
    } else {
        address_ = next;
        connect();
    }
}

HttpResult QtHttpClient::Exchange::result() const {
    switch (parser_->state()) {
        case HttpResponseParser::State::complete:
            return HttpResponse{parser_->status(), parser_->body()};
        case HttpResponseParser::State::notHttp:
            return HttpResponse{};
        case HttpResponseParser::State::tooLong:
            return failure(QT_TRANSLATE_NOOP("QtHttpClient", "The server's answer is too long."));
        default:
            return failure(QT_TRANSLATE_NOOP("QtHttpClient", "The server's answer is incomplete or damaged."));
    }
}

QtHttpClient::QtHttpClient(MainLoop& mainLoop, BackgroundWork& backgroundWork, QList<QSslCertificate> authorities)
    : mainLoop_(mainLoop), backgroundWork_(backgroundWork), authorities_(std::move(authorities)) {}

QtHttpClient::~QtHttpClient() = default;

Subscription QtHttpClient::get(const HttpRequest& request, std::function<void(const HttpResult&)> completion) {
    const auto exchange = std::make_shared<Exchange>(mainLoop_, request, std::move(completion));
    if (isSecure(exchange->address())) {
        exchange->endAfter(request.timeout);
        send(exchange);
    } else {
        mainLoop_.post([weak = std::weak_ptr(exchange)] {
            if (const auto alive = weak.lock()) {
                alive->finish(failure(QT_TRANSLATE_NOOP("QtHttpClient", "The address is not an https address.")));
            }
        });
    }
    return Subscription([exchange] { exchange->cancel(); });
}

void QtHttpClient::send(const std::shared_ptr<Exchange>& exchange) {
    auto start = [weak = std::weak_ptr(exchange), client = std::weak_ptr(alive_), this](const QNetworkProxy& proxy) {
        const auto waiting = weak.lock();
        if (waiting && !client.expired()) {
            waiting->start(proxy, configurationWith(authorities_));
        }
    };
    // The system's answer may come from a script that is fetched first.
    backgroundWork_.run([&mainLoop = mainLoop_, start = std::move(start), address = exchange->address()] {
        mainLoop.post([start, proxy = proxyFor(address)] { start(proxy); });
    });
}

}  // namespace ferrowyn

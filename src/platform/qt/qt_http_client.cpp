#include "platform/qt/qt_http_client.h"

#include <QCoreApplication>
#include <QHostAddress>
#include <QNetworkProxyFactory>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QPointer>
#include <QSslConfiguration>
#include <QUrl>
#include <utility>

#include "platform/background_work.h"
#include "platform/main_loop.h"
#include "platform/qt/qt_name_lookups.h"

namespace ferrowyn {

namespace {

constexpr int mostRedirects = 10;

HttpFailure failure(const char* text) {
    return {QCoreApplication::translate("QtHttpClient", text).toStdString()};
}

bool isSecure(const QUrl& address) {
    return address.isValid() && address.scheme() == "https" && !address.host().isEmpty();
}

QSslConfiguration configurationWith(const QList<QSslCertificate>& furtherAuthorities) {
    auto configuration = QSslConfiguration::defaultConfiguration();
    if (!furtherAuthorities.empty()) {
        // A list that was touched is taken for the whole: the toolkit then looks nothing up in the system's folders.
        configuration.setCaCertificates(QSslConfiguration::systemCaCertificates() + furtherAuthorities);
    }
    return configuration;
}

QNetworkRequest requestFor(const QUrl& address) {
    QNetworkRequest request(address);
    request.setHeader(QNetworkRequest::UserAgentHeader, "Ferrowyn");
    request.setAttribute(QNetworkRequest::CacheLoadControlAttribute, QNetworkRequest::AlwaysNetwork);
    request.setAttribute(QNetworkRequest::CacheSaveControlAttribute, false);
    request.setAttribute(QNetworkRequest::CookieLoadControlAttribute, QNetworkRequest::Manual);
    request.setAttribute(QNetworkRequest::CookieSaveControlAttribute, QNetworkRequest::Manual);
    // One small document needs no streams, and fewer parts can fail.
    request.setAttribute(QNetworkRequest::Http2AllowedAttribute, false);
    request.setAttribute(QNetworkRequest::RedirectPolicyAttribute, QNetworkRequest::NoLessSafeRedirectPolicy);
    request.setMaximumRedirectsAllowed(mostRedirects);
    return request;
}

}  // namespace

/// One request on its way. The token that the caller holds owns it.
class QtHttpClient::Exchange : public std::enable_shared_from_this<Exchange> {
public:
    using Completion = std::function<void(const HttpResult&)>;

    Exchange(const HttpRequest& request, Completion completion)
        : address_(QString::fromUtf8(request.url.data(), static_cast<qsizetype>(request.url.size())), QUrl::StrictMode),
          largestBody_(static_cast<qsizetype>(request.maximumBodySize)),
          completion_(std::move(completion)) {}
    ~Exchange() { dropReply(); }
    Exchange(const Exchange&) = delete;
    Exchange& operator=(const Exchange&) = delete;

    [[nodiscard]] const QUrl& address() const { return address_; }
    void endAfter(MainLoop& mainLoop, Seconds timeout) {
        timeout_ = mainLoop.after(
            timeout, [this] { finish(failure(QT_TRANSLATE_NOOP("QtHttpClient", "The request timed out."))); });
    }
    void start(QNetworkAccessManager& manager, const QSslConfiguration& configuration);
    /// Tells the caller, once.
    void finish(const HttpResult& result);
    void cancel();

private:
    void noteEncryption() { isEncrypted_ = true; }
    void checkAnnouncedSize();
    void readBody();
    void readEnd();
    [[nodiscard]] HttpResult result() const;
    void dropReply();

    QUrl address_;
    qsizetype largestBody_;
    Completion completion_;
    Subscription timeout_;
    /// The manager owns it too.
    QPointer<QNetworkReply> reply_;
    bool isEncrypted_ = false;
    QByteArray body_;
};

void QtHttpClient::Exchange::start(QNetworkAccessManager& manager, const QSslConfiguration& configuration) {
    if (!completion_) {
        return;
    }
    if (QHostAddress(address_.host()).isNull()) {
        name_lookups::noteUnderWay();
    }
    auto request = requestFor(address_);
    request.setSslConfiguration(configuration);
    reply_ = manager.get(request);
    reply_->setReadBufferSize(largestBody_ + 1);
    // A handler may drop the last token, and this object with it, while the reply is still telling others.
    const auto whileAlive = [this](void (Exchange::*handler)()) {
        return [weak = weak_from_this(), handler] {
            if (const auto exchange = weak.lock(); exchange && exchange->completion_) {
                (exchange.get()->*handler)();
            }
        };
    };
    QObject::connect(reply_, &QNetworkReply::encrypted, reply_, whileAlive(&Exchange::noteEncryption));
    QObject::connect(reply_, &QNetworkReply::metaDataChanged, reply_, whileAlive(&Exchange::checkAnnouncedSize));
    QObject::connect(reply_, &QNetworkReply::readyRead, reply_, whileAlive(&Exchange::readBody));
    QObject::connect(reply_, &QNetworkReply::finished, reply_, whileAlive(&Exchange::readEnd));
}

void QtHttpClient::Exchange::finish(const HttpResult& result) {
    if (const auto completion = std::exchange(completion_, nullptr)) {
        const auto self = shared_from_this();
        cancel();
        completion(result);
    }
}

void QtHttpClient::Exchange::cancel() {
    completion_ = nullptr;
    timeout_.reset();
    dropReply();
}

void QtHttpClient::Exchange::checkAnnouncedSize() {
    if (reply_->header(QNetworkRequest::ContentLengthHeader).toLongLong() > largestBody_) {
        finish(failure(QT_TRANSLATE_NOOP("QtHttpClient", "The server's answer is too long.")));
    }
}

void QtHttpClient::Exchange::readBody() {
    body_ += reply_->read(largestBody_ + 1 - body_.size());
    if (body_.size() > largestBody_) {
        finish(failure(QT_TRANSLATE_NOOP("QtHttpClient", "The server's answer is too long.")));
    }
}

void QtHttpClient::Exchange::readEnd() {
    // Only here: a request that is given up leaves its lookup behind.
    name_lookups::noteDone();
    readBody();
    if (completion_) {
        finish(result());
    }
}

HttpResult QtHttpClient::Exchange::result() const {
    const auto error = reply_->error();
    const int status = reply_->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    const bool leavesHttps =
        error == QNetworkReply::InsecureRedirectError || (error == QNetworkReply::ProtocolUnknownError && isEncrypted_);
    if (leavesHttps) {
        return failure(QT_TRANSLATE_NOOP("QtHttpClient", "The server redirects to an address that is not secure."));
    }
    // The toolkit gives up in the same way on a trusted server that says nothing and on one that says something else
    // than HTTP.
    if (error == QNetworkReply::RemoteHostClosedError && isEncrypted_ && status == 0) {
        return HttpResponse{};
    }
    // The toolkit's errors from here on repeat a status, which is an answer too.
    const bool isAnswer =
        error == QNetworkReply::NoError || (error >= QNetworkReply::ContentAccessDenied && status >= 400);
    if (!isAnswer) {
        return HttpFailure{reply_->errorString().toStdString()};
    }
    return HttpResponse{status, body_.toStdString()};
}

void QtHttpClient::Exchange::dropReply() {
    if (const auto reply = std::exchange(reply_, nullptr)) {
        reply->abort();
        reply->deleteLater();
    }
}

QtHttpClient::QtHttpClient(MainLoop& mainLoop, BackgroundWork& backgroundWork,
                           QList<QSslCertificate> furtherAuthorities)
    : mainLoop_(mainLoop), backgroundWork_(backgroundWork), furtherAuthorities_(std::move(furtherAuthorities)) {}

QtHttpClient::~QtHttpClient() = default;

Subscription QtHttpClient::get(const HttpRequest& request, std::function<void(const HttpResult&)> completion) {
    const auto exchange = std::make_shared<Exchange>(request, std::move(completion));
    if (isSecure(exchange->address())) {
        exchange->endAfter(mainLoop_, request.timeout);
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
    if (!manager_) {
        manager_ = std::make_shared<QNetworkAccessManager>();
    }
    auto start = [weak = std::weak_ptr(exchange), manager = std::weak_ptr(manager_), this](const QNetworkProxy& proxy) {
        const auto alive = weak.lock();
        const auto managerAlive = manager.lock();
        if (alive && managerAlive) {
            managerAlive->setProxy(proxy);
            alive->start(*managerAlive, configurationWith(furtherAuthorities_));
        }
    };
    // The system's answer may come from a script that is fetched first.
    backgroundWork_.run([&mainLoop = mainLoop_, start = std::move(start), address = exchange->address()] {
        const auto proxies = QNetworkProxyFactory::systemProxyForQuery(QNetworkProxyQuery(address));
        mainLoop.post([start, proxy = proxies.value(0, QNetworkProxy::NoProxy)] { start(proxy); });
    });
}

}  // namespace ferrowyn

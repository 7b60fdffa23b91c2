#pragma once

#include <QList>
#include <QNetworkAccessManager>
#include <QSslCertificate>
#include <functional>
#include <memory>

#include "platform/http_client.h"

namespace ferrowyn {

class BackgroundWork;
class MainLoop;

/// HTTPS on Qt Network. Errors of the server's certificate are never overlooked, nothing is kept between requests (no
/// cache, no cookies), and a redirect that leaves HTTPS is an error. Main thread, with a QCoreApplication. Main loop
/// and background work outlive it, and it outlives its requests.
class QtHttpClient final : public HttpClient {
public:
    /// The further authorities are trusted beside the system's.
    QtHttpClient(MainLoop& mainLoop, BackgroundWork& backgroundWork, QList<QSslCertificate> furtherAuthorities = {});
    ~QtHttpClient() override;
    QtHttpClient(const QtHttpClient&) = delete;
    QtHttpClient& operator=(const QtHttpClient&) = delete;

    [[nodiscard]] Subscription get(const HttpRequest& request,
                                   std::function<void(const HttpResult&)> completion) override;

private:
    class Exchange;

    /// Finds the proxy, which may take its time, then sends the request.
    void send(const std::shared_ptr<Exchange>& exchange);

    MainLoop& mainLoop_;
    BackgroundWork& backgroundWork_;
    QList<QSslCertificate> furtherAuthorities_;
    /// Made for the first request: most starts of the program ask for nothing. Shared with nobody; requests that wait
    /// for their proxy hold it weakly, since they may outwait this object.
    std::shared_ptr<QNetworkAccessManager> manager_;
};

}  // namespace ferrowyn

#pragma once

#include <QList>
#include <QSslCertificate>
#include <functional>
#include <memory>

#include "platform/http_client.h"

namespace ferrowyn {

class BackgroundWork;
class MainLoop;

/// HTTPS over Qt's sockets. Errors of the server's certificate are never overlooked, nothing is kept between requests
/// (no cache, no cookies), and a redirect that leaves HTTPS is an error. Main thread, with a QCoreApplication. Main
/// loop and background work outlive it, and it outlives its requests.
///
/// Qt's own HTTP client is not used: it always sends a program's name, the user's language and a list of encodings, and
/// takes header fields without any bound.
class QtHttpClient final : public HttpClient {
public:
    /// The authorities, where there are any, are trusted in place of the system's.
    QtHttpClient(MainLoop& mainLoop, BackgroundWork& backgroundWork, QList<QSslCertificate> authorities = {});
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
    QList<QSslCertificate> authorities_;
    /// Requests that wait for their proxy may outwait this object.
    std::shared_ptr<bool> alive_ = std::make_shared<bool>(true);
};

}  // namespace ferrowyn

#pragma once

#include <functional>
#include <memory>
#include <string>

#include "platform/http_client.h"

namespace ferrowyn {

class BackgroundWork;
class MainLoop;

/// HTTPS over libcurl. The server's certificate is always checked, nothing is kept between requests (no cache, no
/// cookies), and a redirect that leaves HTTPS is an error. A transfer runs on a worker thread, where its waits hold up
/// nobody. Main thread, with a QCoreApplication. Main loop and background
/// work outlive its requests.
///
/// Qt's HTTP client is not used: it always sends a program's name, the user's language and a list of encodings, and
/// takes header fields without any bound.
class CurlHttpClient final : public HttpClient {
public:
    /// The authorities in this file (PEM) are trusted in place of the system's, unless it is empty.
    CurlHttpClient(MainLoop& mainLoop, BackgroundWork& backgroundWork, std::string authoritiesFile = {});

    [[nodiscard]] Subscription get(const HttpRequest& request,
                                   std::function<void(const HttpResult&)> completion) override;

private:
    MainLoop& mainLoop_;
    BackgroundWork& backgroundWork_;
    std::string authoritiesFile_;
};

}  // namespace ferrowyn

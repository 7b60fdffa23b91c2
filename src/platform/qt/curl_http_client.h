#pragma once

#include <functional>
#include <memory>
#include <string>

#include "platform/http_client.h"

namespace ferrowyn {

class BackgroundWork;
class MainLoop;

/// HTTPS over libcurl. The server's certificate is always checked, nothing is kept between requests (no cache, no
/// cookies), and a redirect that leaves HTTPS is an error. A transfer runs and waits on a worker thread. Main thread,
/// with a QCoreApplication. The main loop and the background work outlive its requests.
///
/// Qt's HTTP client is not used: it always sends a program's name, the user's language and a list of encodings, and it
/// has no limit for the size of header fields.
class CurlHttpClient final : public HttpClient {
public:
    /// `authoritiesFile` is a PEM file of certificate authorities to trust instead of the system's; empty for the
    /// system's.
    CurlHttpClient(MainLoop& mainLoop, BackgroundWork& backgroundWork, std::string authoritiesFile = {});

    [[nodiscard]] Subscription get(const HttpRequest& request,
                                   std::function<void(const HttpResult&)> completion) override;

private:
    MainLoop& mainLoop_;
    BackgroundWork& backgroundWork_;
    std::string authoritiesFile_;
};

}  // namespace ferrowyn

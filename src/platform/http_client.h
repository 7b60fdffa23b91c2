#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <variant>

#include "core/published.h"
#include "platform/main_loop.h"

namespace ferrowyn {

/// A GET request over HTTPS, as an application asks for one: system proxy and certificates, nothing answered from a
/// cache. The server is told the address, and nothing about the program or its user.
struct HttpRequest {
    std::string url;
    /// From the start of the request to the last byte of the answer.
    Seconds timeout{10.0};
    /// A longer body is a transport error, told as soon as it is known.
    std::size_t maximumBodySize = std::size_t{1} << 20U;
};

struct HttpResponse {
    /// 0 when what answered was not an HTTP server.
    int status = 0;
    std::string body;
};

/// No answer was had: no connection, no trust in the certificate, a redirect that leaves HTTPS, too slow, too long.
struct HttpFailure {
    /// For the user, in the language of the program.
    std::string description;
};

using HttpResult = std::variant<HttpResponse, HttpFailure>;

/// Fetches small documents. Main thread; nothing here blocks.
class HttpClient {
public:
    virtual ~HttpClient() = default;

    /// Calls back exactly once, later, on the main loop; never after the token was dropped, which cancels the request.
    /// The callback may drop the token. An address that is not https is a failure.
    [[nodiscard]] virtual Subscription get(const HttpRequest& request,
                                           std::function<void(const HttpResult&)> completion) = 0;
};

}  // namespace ferrowyn

#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <variant>

#include "core/published.h"
#include "platform/main_loop.h"

namespace ferrowyn {

/// A GET request over HTTPS with the proxy and the certificates of the system, and without a cache. The server gets the
/// address and nothing about the program or its user.
struct HttpRequest {
    std::string url;
    /// From the start of the request to the last byte of the answer.
    Seconds timeout{10.0};
    /// In bytes. A longer body is a failure, reported as soon as the limit is passed.
    std::size_t maximumBodySize = std::size_t{1} << 20U;
};

struct HttpResponse {
    /// 0 when the server's answer was not HTTP.
    int status = 0;
    std::string body;
};

/// There is no answer: no connection, no trust in the certificate, a redirect that leaves HTTPS, too slow, too long.
struct HttpFailure {
    /// For the user, in the language of the program.
    std::string description;
};

using HttpResult = std::variant<HttpResponse, HttpFailure>;

/// Fetches small documents. Main thread; nothing here blocks.
class HttpClient {
public:
    virtual ~HttpClient() = default;

    /// Starts the request. Calls `completion` exactly once, in a later turn of the main loop. Dropping the token
    /// cancels the request: `completion` is not called then. `completion` may drop the token. An address that is not
    /// https is a failure.
    [[nodiscard]] virtual Subscription get(const HttpRequest& request,
                                           std::function<void(const HttpResult&)> completion) = 0;
};

}  // namespace ferrowyn

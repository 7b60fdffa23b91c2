#include "platform/qt/curl_http_client.h"

#include <curl/curl.h>

#include <QCoreApplication>
#include <QNetworkProxyFactory>
#include <QUrl>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <cstdlib>
#include <mutex>
#include <set>
#include <string_view>
#include <utility>

#include "platform/main_loop.h"

namespace ferrowyn {

namespace {

constexpr long mostRedirects = 10;
constexpr long firstErrorStatus = 300;
/// In bytes, for the header fields of all answers of one request together, redirects included.
constexpr std::size_t largestHead = std::size_t{64} << 10U;
/// In milliseconds, for one wait for sockets. A transfer that is cancelled wakes up earlier.
constexpr int longestPoll = 60'000;

HttpFailure failure(const char* text) {
    return {QCoreApplication::translate("HttpClient", text).toStdString()};
}

/// The address to request, without a user name or password; empty unless it is a valid https address.
std::string secureAddress(const std::string& text) {
    const QUrl url(QString::fromStdString(text), QUrl::StrictMode);
    if (!url.isValid() || url.scheme() != "https" || url.host().isEmpty()) {
        return {};
    }
    return url.toEncoded(QUrl::RemoveUserInfo | QUrl::RemoveFragment).toStdString();
}

/// The first of the system's proxies that can carry an encrypted connection, in libcurl's form; empty for none. Not for
/// the main thread, because the system may first fetch a script that chooses the proxy.
std::string proxyFor(const std::string& address) {
    const QNetworkProxyQuery query(QUrl(QString::fromStdString(address)));
    for (const auto& proxy : QNetworkProxyFactory::systemProxyForQuery(query)) {
        if (proxy.type() == QNetworkProxy::NoProxy) {
            return {};
        }
        if (proxy.capabilities().testFlag(QNetworkProxy::TunnelingCapability)) {
            QUrl url;
            url.setScheme(proxy.type() == QNetworkProxy::Socks5Proxy ? "socks5h" : "http");
            url.setUserName(proxy.user());
            url.setPassword(proxy.password());
            url.setHost(proxy.hostName());
            url.setPort(proxy.port());
            return url.toEncoded().toStdString();
        }
    }
    return {};
}

long milliseconds(Seconds seconds) {
    return static_cast<long>(std::chrono::ceil<std::chrono::milliseconds>(seconds).count());
}

struct EasyDeleter {
    void operator()(CURL* handle) const { curl_easy_cleanup(handle); }
};
struct MultiDeleter {
    void operator()(CURLM* handle) const { curl_multi_cleanup(handle); }
};
struct ListDeleter {
    void operator()(curl_slist* list) const { curl_slist_free_all(list); }
};

/// One transfer. The worker thread runs it; any thread may cancel it.
class Transfer {
public:
    Transfer(std::string address, const HttpRequest& request, std::string authoritiesFile)
        : address_(std::move(address)),
          authoritiesFile_(std::move(authoritiesFile)),
          timeout_(request.timeout),
          largestBody_(request.maximumBodySize) {}

    /// Makes `run` return soon, with a meaningless result.
    void cancel() {
        isCancelled_.store(true);
        curl_multi_wakeup(multi_.get());
    }

    /// Waits for the answer. Called once, on a worker thread.
    [[nodiscard]] HttpResult run() {
        const auto proxy = isCancelled_.load() ? std::string() : proxyFor(address_);
        const std::unique_ptr<curl_slist, ListDeleter> fields(
            curl_slist_append(curl_slist_append(nullptr, "Connection: close"), "Accept:"));
        const std::unique_ptr<CURL, EasyDeleter> easy(curl_easy_init());
        if (easy == nullptr || multi_ == nullptr) {
            return failure(QT_TRANSLATE_NOOP("HttpClient", "The network cannot be used: out of memory."));
        }
        configure(easy.get(), fields.get(), proxy);
        curl_multi_add_handle(multi_.get(), easy.get());
        const auto outcome = perform();
        long status = 0;
        curl_easy_getinfo(easy.get(), CURLINFO_RESPONSE_CODE, &status);
        long proxyStatus = 0;
        curl_easy_getinfo(easy.get(), CURLINFO_HTTP_CONNECTCODE, &proxyStatus);
        curl_multi_remove_handle(multi_.get(), easy.get());
        if (outcome != CURLE_OK && proxyStatus >= firstErrorStatus) {
            return failure(
                QT_TRANSLATE_NOOP("HttpClient", "The proxy of the network settings refuses the connection."));
        }
        return result(outcome, static_cast<int>(status));
    }

private:
    void configure(CURL* easy, const curl_slist* fields, const std::string& proxy) {
        curl_easy_setopt(easy, CURLOPT_URL, address_.c_str());
        curl_easy_setopt(easy, CURLOPT_PROTOCOLS_STR, "https");
        curl_easy_setopt(easy, CURLOPT_REDIR_PROTOCOLS_STR, "https");
        curl_easy_setopt(easy, CURLOPT_FOLLOWLOCATION, 1L);
        curl_easy_setopt(easy, CURLOPT_MAXREDIRS, mostRedirects);
        curl_easy_setopt(easy, CURLOPT_HTTP_VERSION, static_cast<long>(CURL_HTTP_VERSION_1_1));
        // A field without a value removes the field that libcurl would send.
        curl_easy_setopt(easy, CURLOPT_HTTPHEADER, fields);
        curl_easy_setopt(easy, CURLOPT_NOSIGNAL, 1L);
        // When a name has several addresses, libcurl tries the next one after half of this time.
        curl_easy_setopt(easy, CURLOPT_CONNECTTIMEOUT_MS, milliseconds(timeout_));
        // A cancelled transfer does not wait for the lookup of its name.
        curl_easy_setopt(easy, CURLOPT_QUICK_EXIT, 1L);
        // Set also when there is none, because libcurl would read the environment otherwise, and the system's setting
        // has priority.
        curl_easy_setopt(easy, CURLOPT_PROXY, proxy.c_str());
        curl_easy_setopt(easy, CURLOPT_NOPROXY, "");
        curl_easy_setopt(easy, CURLOPT_SUPPRESS_CONNECT_HEADERS, 1L);
        if (!authoritiesFile_.empty()) {
            curl_easy_setopt(easy, CURLOPT_CAINFO, authoritiesFile_.c_str());
            curl_easy_setopt(easy, CURLOPT_CAPATH, nullptr);
        }
        curl_easy_setopt(easy, CURLOPT_PREREQFUNCTION, &Transfer::onConnected);
        curl_easy_setopt(easy, CURLOPT_PREREQDATA, this);
        curl_easy_setopt(easy, CURLOPT_HEADERFUNCTION, &Transfer::onHeaderLine);
        curl_easy_setopt(easy, CURLOPT_HEADERDATA, this);
        curl_easy_setopt(easy, CURLOPT_WRITEFUNCTION, &Transfer::onBody);
        curl_easy_setopt(easy, CURLOPT_WRITEDATA, this);
        curl_easy_setopt(easy, CURLOPT_MAXFILESIZE_LARGE, static_cast<curl_off_t>(largestBody_));
    }

    [[nodiscard]] CURLcode perform() {
        int unfinished = 1;
        while (unfinished != 0 && !isCancelled_.load()) {
            if (curl_multi_perform(multi_.get(), &unfinished) != CURLM_OK) {
                return CURLE_FAILED_INIT;
            }
            if (unfinished != 0) {
                curl_multi_poll(multi_.get(), nullptr, 0, longestPoll, nullptr);
            }
        }
        int queued = 0;
        const auto* const message = curl_multi_info_read(multi_.get(), &queued);
        return message != nullptr ? message->data.result : CURLE_ABORTED_BY_CALLBACK;
    }

    /// A request is about to be sent, the first one or one to where a redirect leads.
    static int onConnected(void* self, char* /*remote*/, char* /*local*/, int /*remotePort*/, int /*localPort*/) {
        static_cast<Transfer*>(self)->hasAnswer_ = false;
        return CURL_PREREQFUNC_OK;
    }
    static std::size_t onHeaderLine(const char* /*line*/, std::size_t /*one*/, std::size_t size, void* self) {
        auto& transfer = *static_cast<Transfer*>(self);
        transfer.hasAnswer_ = true;
        transfer.headSize_ += size;
        transfer.isTooLong_ = transfer.headSize_ > largestHead;
        return transfer.isTooLong_ ? 0 : size;
    }
    static std::size_t onBody(const char* bytes, std::size_t /*one*/, std::size_t size, void* self) {
        auto& transfer = *static_cast<Transfer*>(self);
        transfer.isTooLong_ = size > transfer.largestBody_ - transfer.body_.size();
        if (transfer.isTooLong_) {
            return 0;
        }
        transfer.body_.append(bytes, size);
        return size;
    }

    [[nodiscard]] HttpResult result(CURLcode outcome, int status) {
        if (isTooLong_) {
            return failure(QT_TRANSLATE_NOOP("HttpClient", "The server's answer is too long."));
        }
        switch (outcome) {
            case CURLE_OK:
                return HttpResponse{status, std::move(body_)};
            case CURLE_URL_MALFORMAT:
            case CURLE_UNSUPPORTED_PROTOCOL:
                // libcurl's result for an answer without a status line, and for a redirect to another protocol.
                if (!hasAnswer_) {
                    return HttpResponse{};
                }
                return failure(
                    QT_TRANSLATE_NOOP("HttpClient", "The server redirects to an address that is not secure."));
            case CURLE_WEIRD_SERVER_REPLY:
            case CURLE_GOT_NOTHING:
                return HttpResponse{};
            case CURLE_TOO_MANY_REDIRECTS:
                return failure(QT_TRANSLATE_NOOP("HttpClient", "The server redirects too often."));
            case CURLE_FILESIZE_EXCEEDED:
            // libcurl's result for header fields that are too long for it.
            case CURLE_OUT_OF_MEMORY:
                return failure(QT_TRANSLATE_NOOP("HttpClient", "The server's answer is too long."));
            case CURLE_PARTIAL_FILE:
            case CURLE_SEND_ERROR:
            case CURLE_RECV_ERROR:
            case CURLE_BAD_CONTENT_ENCODING:
                return failure(QT_TRANSLATE_NOOP("HttpClient", "The server's answer is incomplete or damaged."));
            case CURLE_COULDNT_RESOLVE_PROXY:
                return failure(
                    QT_TRANSLATE_NOOP("HttpClient", "The proxy of the network settings could not be found."));
            case CURLE_COULDNT_RESOLVE_HOST:
                return failure(QT_TRANSLATE_NOOP(
                    "HttpClient", "The server could not be found. Is this computer connected to the network?"));
            case CURLE_COULDNT_CONNECT:
                return failure(QT_TRANSLATE_NOOP("HttpClient", "The server could not be reached."));
            case CURLE_PEER_FAILED_VERIFICATION:
                return failure(QT_TRANSLATE_NOOP("HttpClient", "The server's certificate is not trusted."));
            case CURLE_SSL_CACERT_BADFILE:
                return failure(QT_TRANSLATE_NOOP(
                    "HttpClient", "The system's list of trusted certificates is missing. Install its package."));
            case CURLE_SSL_CONNECT_ERROR:
                return failure(QT_TRANSLATE_NOOP("HttpClient", "The server offers no secure connection."));
            default:
                return HttpFailure{curl_easy_strerror(outcome)};
        }
    }

    const std::string address_;
    const std::string authoritiesFile_;
    const Seconds timeout_;
    const std::size_t largestBody_;
    const std::unique_ptr<CURLM, MultiDeleter> multi_{curl_multi_init()};
    std::atomic<bool> isCancelled_{false};
    // Used by the worker thread only.
    bool hasAnswer_ = false;
    bool isTooLong_ = false;
    std::size_t headSize_ = 0;
    std::string body_;
};

/// The transfers that run now. The process may end with `exit` during a transfer (the toolkit does that when the
/// display is gone). The end of the process then waits for the transfers before libcurl cleans up. This object is never
/// destroyed, because a worker may use it even later.
class RunningTransfers {
public:
    static RunningTransfers& instance() {
        static auto& transfers = *new RunningTransfers;
        return transfers;
    }

    /// On a worker thread.
    [[nodiscard]] HttpResult run(Transfer& transfer) {
        {
            const std::scoped_lock lock(mutex_);
            if (isEnding_) {
                return HttpFailure{};
            }
            running_.insert(&transfer);
        }
        auto result = transfer.run();
        const std::scoped_lock lock(mutex_);
        running_.erase(&transfer);
        oneHasEnded_.notify_all();
        return result;
    }

private:
    RunningTransfers() {
        curl_global_init(CURL_GLOBAL_DEFAULT);
        // Runs before the clean-up that libcurl has just registered.
        std::atexit([] { instance().end(); });
    }

    void end() {
        std::unique_lock lock(mutex_);
        isEnding_ = true;
        for (auto* const transfer : running_) {
            transfer->cancel();
        }
        // Waits only for a limited time, because the system's search for its proxy cannot be cancelled.
        oneHasEnded_.wait_for(lock, patienceAtTheEnd, [this] { return running_.empty(); });
    }

    static constexpr std::chrono::seconds patienceAtTheEnd{2};

    std::mutex mutex_;
    std::condition_variable oneHasEnded_;
    std::set<Transfer*> running_;
    bool isEnding_ = false;
};

/// One request on the caller's side. Main thread; the caller's token owns it.
class Exchange {
public:
    explicit Exchange(std::function<void(const HttpResult&)> completion) : completion_(std::move(completion)) {}
    ~Exchange() { cancel(); }
    Exchange(const Exchange&) = delete;
    Exchange& operator=(const Exchange&) = delete;

    void start(std::shared_ptr<Transfer> transfer, Subscription timeout) {
        transfer_ = std::move(transfer);
        timeout_ = std::move(timeout);
    }
    void finish(const HttpResult& result) {
        if (const auto completion = std::exchange(completion_, nullptr)) {
            cancel();
            completion(result);
        }
    }
    void cancel() {
        completion_ = nullptr;
        timeout_.reset();
        if (const auto transfer = std::exchange(transfer_, nullptr)) {
            transfer->cancel();
        }
    }

private:
    std::function<void(const HttpResult&)> completion_;
    std::shared_ptr<Transfer> transfer_;
    Subscription timeout_;
};

}  // namespace

CurlHttpClient::CurlHttpClient(MainLoop& mainLoop, BackgroundWork& backgroundWork, std::string authoritiesFile)
    : mainLoop_(mainLoop), backgroundWork_(backgroundWork), authoritiesFile_(std::move(authoritiesFile)) {
    // Initialises libcurl before a second thread uses it.
    RunningTransfers::instance();
}

Subscription CurlHttpClient::get(const HttpRequest& request, std::function<void(const HttpResult&)> completion) {
    const auto exchange = std::make_shared<Exchange>(std::move(completion));
    const auto finish = [weak = std::weak_ptr(exchange)](const HttpResult& result) {
        if (const auto waiting = weak.lock()) {
            waiting->finish(result);
        }
    };
    if (auto address = secureAddress(request.url); address.empty()) {
        mainLoop_.post(
            [finish] { finish(failure(QT_TRANSLATE_NOOP("HttpClient", "The address is not an https address."))); });
    } else {
        const auto transfer = std::make_shared<Transfer>(std::move(address), request, authoritiesFile_);
        exchange->start(transfer, mainLoop_.after(request.timeout, [finish] {
            finish(failure(QT_TRANSLATE_NOOP("HttpClient", "The request timed out.")));
        }));
        backgroundWork_.run([&mainLoop = mainLoop_, finish, transfer] {
            mainLoop.post([finish, result = RunningTransfers::instance().run(*transfer)] { finish(result); });
        });
    }
    return Subscription([exchange] { exchange->cancel(); });
}

}  // namespace ferrowyn

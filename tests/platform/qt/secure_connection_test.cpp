#include <dirent.h>
#include <dlfcn.h>
#include <netdb.h>
#include <sys/stat.h>

#include <QEventLoop>
#include <QTcpServer>
#include <QTcpSocket>
#include <chrono>
#include <cstdio>
#include <optional>
#include <string_view>

#include "platform/qt/curl_http_client.h"
#include "platform/qt/qt_main_loop.h"
#include "tests/platform/qt/https_servers.h"

// The folder with the system's trusted authorities is built into libcurl. To change what is in it needs rights that a
// test has not always, and would change the machine. So this program stands before the C library, and shows another
// folder's content in its place; likewise it gives a name two addresses. All else is the product's own: its defaults,
// libcurl and OpenSSL.

namespace {

constexpr std::string_view systemStore = "/etc/ssl/certs";
/// In this order.
constexpr const char* nameOfTwo = "behind.example";
constexpr const char* firstAddress = "::1";
constexpr const char* secondAddress = "127.0.0.1";

/// What is shown in place of the system's folder; the folder itself while that is empty.
std::string shownStore;

std::string shown(const char* path) {
    const std::string_view asked(path);
    const bool isInStore =
        asked.starts_with(systemStore) && (asked.size() == systemStore.size() || asked[systemStore.size()] == '/');
    return isInStore && !shownStore.empty() ? shownStore + std::string(asked.substr(systemStore.size()))
                                            : std::string(asked);
}

/// The C library's function of that name.
template <typename Function>
Function* next(const char* name) {
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

using Open = FILE*(const char*, const char*);
using OpenFolder = DIR*(const char*);
using Status = int(const char*, struct stat*);
using Status64 = int(const char*, struct stat64*);
using AddressLookup = int(const char*, const char*, const addrinfo*, addrinfo**);
using ExtendedStatus = int(int, const char*, int, unsigned, struct statx*);

}  // namespace

extern "C" {

FILE* fopen(const char* path, const char* mode) {
    return next<Open>("fopen")(shown(path).c_str(), mode);
}
FILE* fopen64(const char* path, const char* mode) {
    return next<Open>("fopen64")(shown(path).c_str(), mode);
}
DIR* opendir(const char* path) {
    return next<OpenFolder>("opendir")(shown(path).c_str());
}
int stat(const char* path, struct stat* status) noexcept {
    return next<Status>("stat")(shown(path).c_str(), status);
}
int stat64(const char* path, struct stat64* status) noexcept {
    return next<Status64>("stat64")(shown(path).c_str(), status);
}
int lstat64(const char* path, struct stat64* status) noexcept {
    return next<Status64>("lstat64")(shown(path).c_str(), status);
}
int statx(int folder, const char* path, int flags, unsigned mask, struct statx* status) noexcept {
    return next<ExtendedStatus>("statx")(folder, shown(path).c_str(), flags, mask, status);
}

/// The library that Qt asks for the system's proxy deletes an IPv6 address as if it were a shorter one, which harms
/// nobody. Read by the address sanitizer alone.
const char* __asan_default_options() {  // NOLINT(bugprone-reserved-identifier)
    return "new_delete_type_mismatch=0";
}

int getaddrinfo(const char* name, const char* service, const addrinfo* hints, addrinfo** found) {
    const auto lookUp = next<AddressLookup>("getaddrinfo");
    if (name == nullptr || std::string_view(name) != nameOfTwo) {
        return lookUp(name, service, hints, found);
    }
    const int error = lookUp(firstAddress, service, hints, found);
    auto* last = error == 0 ? *found : nullptr;
    while (last != nullptr && last->ai_next != nullptr) {
        last = last->ai_next;
    }
    return last != nullptr ? lookUp(secondAddress, service, hints, &last->ai_next) : error;
}

}  // extern "C"

namespace ferrowyn {
namespace {

using namespace std::chrono_literals;

class SecureConnectionTest : public testing::Test {
protected:
    SecureConnectionTest() {
        qputenv("no_proxy", "127.0.0.1,behind.example");
        shownStore = servers.store();
    }
    ~SecureConnectionTest() override { shownStore.clear(); }

    /// What the client that the product makes gets from there.
    HttpResult get(const std::string& host) {
        std::optional<HttpResult> answer;
        QEventLoop events;
        const auto token =
            client.get({.url = "https://" + host + "/x?v=text", .timeout = Seconds(30)}, [&](const HttpResult& result) {
                answer = result;
                events.quit();
            });
        events.exec();
        return *answer;
    }
    static std::string failure(const HttpResult& result) {
        const auto* failure = std::get_if<HttpFailure>(&result);
        return failure != nullptr ? failure->description : "";
    }
    static std::string body(const HttpResult& result) {
        const auto* response = std::get_if<HttpResponse>(&result);
        return response != nullptr ? response->body : failure(result);
    }

    HttpsServers servers;
    QtMainLoop mainLoop;
    QtBackgroundWork backgroundWork;
    CurlHttpClient client{mainLoop, backgroundWork};
};

TEST_F(SecureConnectionTest, TheProductTrustsTheServersWhoseAuthorityTheSystemKnowsAndNoOthers) {
    EXPECT_EQ(body(get(servers.host("good"))), "It works!");
    for (const char* certificate : {"unknown", "other-host", "expired"}) {
        EXPECT_THAT(failure(get(servers.host(certificate))), testing::HasSubstr("certificate")) << certificate;
    }
}

TEST_F(SecureConnectionTest, AnIPv6AddressThatLeadsNowhereDoesNotHoldUpTheOther) {
    // A server whose queue is full leaves further connections without any answer, as a network that drops them does.
    QTcpServer full;
    full.setListenBacklogSize(0);
    const auto port = static_cast<quint16>(std::stoi(servers.port()));
    ASSERT_TRUE(full.listen(QHostAddress(firstAddress), port));
    full.pauseAccepting();
    QTcpSocket queued;
    queued.connectToHost(firstAddress, port);
    ASSERT_TRUE(queued.waitForConnected(10000));
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(body(get(nameOfTwo + (":" + servers.port()))), "It works!");
    const auto taken = std::chrono::steady_clock::now() - start;
    EXPECT_GT(taken, 150ms) << "the first address was not even tried";
    EXPECT_LT(taken, 10s);
}

TEST_F(SecureConnectionTest, AnAddressThatRefusesIsFollowedByTheNext) {
    EXPECT_EQ(body(get(nameOfTwo + (":" + servers.port()))), "It works!");
}

}  // namespace
}  // namespace ferrowyn

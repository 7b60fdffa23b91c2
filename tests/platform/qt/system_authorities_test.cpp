#include <dirent.h>
#include <dlfcn.h>
#include <sys/stat.h>

#include <QEventLoop>
#include <chrono>
#include <cstdio>
#include <optional>
#include <string_view>

#include "platform/qt/qt_background_work.h"
#include "platform/qt/qt_http_client.h"
#include "platform/qt/qt_main_loop.h"
#include "tests/platform/qt/https_servers.h"

// The folders with the system's trusted authorities are built into the toolkit. To change what is in them needs rights
// that a test has not always, and would change the machine. So this program stands before the C library, and shows
// another folder's content in their place. All else is the product's own: its defaults, the toolkit and OpenSSL.

namespace {

constexpr std::string_view systemStore = "/etc/ssl/certs";

/// What is shown in place of the system's folder; the folder itself while that is empty.
std::string shownStore;  // NOLINT(cert-err58-cpp)

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

}  // extern "C"

namespace ferrowyn {
namespace {

using namespace std::chrono_literals;

/// What the client that the product makes gets from the server with this certificate.
std::optional<HttpResult> getAsTheProductDoes(const HttpsServers& servers, const char* certificate) {
    QtMainLoop mainLoop;
    QtBackgroundWork backgroundWork;
    QtHttpClient client(mainLoop, backgroundWork);
    std::optional<HttpResult> answer;
    QEventLoop events;
    const auto patience = mainLoop.after(30s, [&] { events.quit(); });
    const auto token =
        client.get({"https://" + servers.host(certificate) + "/x?v=text"}, [&](const HttpResult& result) {
            answer = result;
            events.quit();
        });
    events.exec();
    return answer;
}

TEST(SystemAuthoritiesTest, TheProductTrustsTheServersWhoseAuthorityTheSystemKnowsAndNoOthers) {
    qputenv("no_proxy", "127.0.0.1");
    const HttpsServers servers;
    shownStore = servers.store();

    const auto known = getAsTheProductDoes(servers, "good");
    ASSERT_TRUE(known) << "no answer";
    const auto* failure = std::get_if<HttpFailure>(&*known);
    ASSERT_EQ(failure, nullptr) << failure->description;
    EXPECT_EQ(std::get<HttpResponse>(*known).body, "It works!");

    for (const char* certificate : {"unknown", "other-host", "expired"}) {
        const auto stranger = getAsTheProductDoes(servers, certificate);
        ASSERT_TRUE(stranger) << "no answer";
        ASSERT_TRUE(std::holds_alternative<HttpFailure>(*stranger)) << certificate;
        EXPECT_THAT(std::get<HttpFailure>(*stranger).description, testing::HasSubstr("certificate"));
    }
}

}  // namespace
}  // namespace ferrowyn

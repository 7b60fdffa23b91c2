#include "platform/qt/curl_http_client.h"

#include <QEventLoop>
#include <QTcpServer>
#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <memory>
#include <optional>

#include "platform/qt/qt_main_loop.h"
#include "platform/simulated/simulated_desktop.h"
#include "platform/simulated/simulated_system.h"
#include "services/update_checker.h"
#include "tests/platform/qt/https_servers.h"

namespace ferrowyn {
namespace {

using namespace std::chrono_literals;
using testing::HasSubstr;

class CurlHttpClientTest : public testing::Test {
protected:
    static void SetUpTestSuite() {
        // The system's proxy, if there is one, knows nothing of this machine's own servers.
        qputenv("no_proxy", "127.0.0.1");
        servers = std::make_unique<HttpsServers>();
    }
    static void TearDownTestSuite() { servers.reset(); }

    [[nodiscard]] static std::string address(const std::string& behaviour, const char* certificate = "good") {
        return "https://" + servers->host(certificate) + "/x?v=" + behaviour;
    }
    /// The one answer to the request; nothing when none came for a long time.
    std::optional<HttpResult> get(const HttpRequest& request) {
        std::vector<HttpResult> answers;
        QEventLoop events;
        const auto patience = mainLoop.after(30s, [&] { events.quit(); });
        const auto token = client.get(request, [&](const HttpResult& result) {
            answers.push_back(result);
            events.quit();
        });
        EXPECT_EQ(answers.size(), 0U) << "answered before the call returned";
        events.exec();
        // Whatever else would still come, comes now.
        QCoreApplication::processEvents();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        EXPECT_EQ(answers.size(), 1U);
        return answers.empty() ? std::nullopt : std::optional(answers.front());
    }
    HttpResponse response(const HttpRequest& request) {
        const auto result = get(request);
        if (const auto* failure = result ? std::get_if<HttpFailure>(&*result) : nullptr) {
            ADD_FAILURE() << request.url << ": " << failure->description;
        }
        const auto* answer = result ? std::get_if<HttpResponse>(&*result) : nullptr;
        return answer != nullptr ? *answer : HttpResponse{-1, {}};
    }
    std::string failure(const HttpRequest& request) {
        const auto result = get(request);
        if (const auto* answer = result ? std::get_if<HttpResponse>(&*result) : nullptr) {
            ADD_FAILURE() << request.url << " answered with " << answer->status;
        }
        const auto* failed = result ? std::get_if<HttpFailure>(&*result) : nullptr;
        return failed != nullptr ? failed->description : "";
    }

    static inline std::unique_ptr<HttpsServers> servers;
    QtMainLoop mainLoop;
    QtBackgroundWork backgroundWork;
    CurlHttpClient client{mainLoop, backgroundWork, servers->authority()};
};

// --- answers
// ----------------------------------------------------------------------------------------------------------

TEST_F(CurlHttpClientTest, HandsOverTheBodyAsItIs) {
    EXPECT_EQ(response({address("text")}).status, 200);
    EXPECT_EQ(response({address("text")}).body, "It works!");
    EXPECT_EQ(response({address("empty")}).body, "");
    std::string everyByte;
    for (int byte = 0; byte < 256; ++byte) {
        everyByte += static_cast<char>(byte);
    }
    EXPECT_EQ(response({address("binary")}).body, everyByte);
}

TEST_F(CurlHttpClientTest, AStatusThatIsNoSuccessIsAnAnswerToo) {
    for (const int status : {404, 500, 401, 403, 418, 503, 204, 304}) {
        EXPECT_EQ(response({address(std::to_string(status))}).status, status);
    }
}

TEST_F(CurlHttpClientTest, FollowsARedirectThatStaysOnHttps) {
    const auto answer = response({address("redirect-https")});
    EXPECT_EQ(answer.status, 200);
    EXPECT_THAT(answer.body, HasSubstr("9.1"));
    EXPECT_EQ(response({address("redirect-with-a-body")}).body, "It works!");
}

TEST_F(CurlHttpClientTest, SendsTheAddressAndNothingElse) {
    static_cast<void>(response({address("echo")}));
    const auto request = response({address("echo")}).body;
    EXPECT_EQ(request, "GET /x?v=echo HTTP/1.1\r\nHost: " + servers->host() + "\r\nConnection: close\r\n\r\n");
}

TEST_F(CurlHttpClientTest, TheAddressStaysOneLineOfTheRequest) {
    const auto request = response({address("redirect-with-odd-characters")}).body;
    EXPECT_EQ(request, "GET /x?v=echo&odd=a+b HTTP/1.1\r\nHost: " + servers->host() + "\r\nConnection: close\r\n\r\n");
    EXPECT_THAT(response({address("echo") + "&text=a%0D%0Ab"}).body, HasSubstr("&text=a%0D%0Ab HTTP/1.1"));
}

TEST_F(CurlHttpClientTest, FindsAServerByItsName) {
    qputenv("no_proxy", "127.0.0.1,localhost");
    EXPECT_EQ(response({"https://localhost:" + servers->port() + "/?v=text"}).body, "It works!");
    // Longer than a name may be, so that no server of names is asked.
    std::string tooLong = "a";
    for (int part = 0; part < 150; ++part) {
        tooLong += ".a";
    }
    EXPECT_EQ(failure({"https://" + tooLong + "/"}),
              "The server could not be found. Is this computer connected to the network?");
}

TEST_F(CurlHttpClientTest, TakesTheSystemsProxy) {
    const auto behindTheProxy = "https://behind.example:" + servers->port() + "/?v=text";
    qputenv("https_proxy", QByteArray::fromStdString("http://" + servers->host("proxy")));
    EXPECT_EQ(response({behindTheProxy}).body, "It works!");
    qputenv("https_proxy", QByteArray::fromStdString("http://" + servers->host("refusing-proxy")));
    EXPECT_EQ(failure({behindTheProxy}), "The proxy of the network settings refuses the connection.");
    qunsetenv("https_proxy");
}

TEST_F(CurlHttpClientTest, WhatSpeaksNoHttpAnswersWithStatusZero) {
    EXPECT_EQ(response({address("not-http")}).status, 0);
    EXPECT_EQ(response({address("nothing")}).status, 0);
}

// --- failures
// ---------------------------------------------------------------------------------------------------------

TEST_F(CurlHttpClientTest, NeverLeavesHttps) {
    EXPECT_EQ(failure({address("redirect-http")}), "The server redirects to an address that is not secure.");
    EXPECT_EQ(failure({address("redirect-file")}), "The server redirects to an address that is not secure.");
    EXPECT_EQ(failure({"http://" + servers->host("plain") + "/?v=manifest"}), "The address is not an https address.");
    for (const char* url : {"", "file:///etc/hostname", "https://", "no address", "ftp://127.0.0.1/x"}) {
        EXPECT_EQ(failure({url}), "The address is not an https address.") << url;
    }
}

TEST_F(CurlHttpClientTest, ACircleOfRedirectsEnds) {
    EXPECT_EQ(failure({address("redirect-for-ever")}), "The server redirects too often.");
}

TEST_F(CurlHttpClientTest, TrustsNoCertificateThatIsWrongInAnyWay) {
    EXPECT_THAT(failure({address("text", "unknown")}), HasSubstr("certificate"));
    EXPECT_THAT(failure({address("text", "other-host")}), HasSubstr("certificate"));
    EXPECT_THAT(failure({address("text", "expired")}), HasSubstr("certificate"));
}

TEST_F(CurlHttpClientTest, TheTestsOwnAuthorityIsAStrangerToTheProduct) {
    CurlHttpClient product(mainLoop, backgroundWork);
    std::optional<HttpResult> answer;
    QEventLoop events;
    const auto token = product.get({address("text")}, [&](const HttpResult& result) {
        answer = result;
        events.quit();
    });
    events.exec();
    ASSERT_TRUE(std::holds_alternative<HttpFailure>(*answer));
    EXPECT_THAT(std::get<HttpFailure>(*answer).description, HasSubstr("certificate"));
}

TEST_F(CurlHttpClientTest, AServerWithoutEncryptionIsAFailure) {
    EXPECT_EQ(failure({address("text", "plain")}), "The server offers no secure connection.");
}

TEST_F(CurlHttpClientTest, AnAnswerThatBreaksOffIsAFailure) {
    for (const char* behaviour : {"cut-off", "broken-chunk", "reset"}) {
        EXPECT_EQ(failure({address(behaviour)}), "The server's answer is incomplete or damaged.") << behaviour;
    }
}

TEST_F(CurlHttpClientTest, NobodyListeningIsAFailure) {
    QTcpServer placeholder;
    ASSERT_TRUE(placeholder.listen(QHostAddress::LocalHost));
    const auto url = "https://127.0.0.1:" + std::to_string(placeholder.serverPort()) + "/";
    placeholder.close();
    EXPECT_EQ(failure({url}), "The server could not be reached.");
}

TEST_F(CurlHttpClientTest, TheTimeOutCountsFromTheStartToTheEnd) {
    for (const char* behaviour : {"silent", "unfinished"}) {
        const auto start = std::chrono::steady_clock::now();
        EXPECT_EQ(failure({.url = address(behaviour), .timeout = Seconds(0.3)}), "The request timed out.");
        const Seconds taken = std::chrono::steady_clock::now() - start;
        EXPECT_GE(taken.count(), 0.3) << behaviour;
        EXPECT_LT(taken.count(), 5) << behaviour;
    }
}

TEST_F(CurlHttpClientTest, ABodyMayBeAsLongAsAllowedAndNotOneByteLonger) {
    EXPECT_EQ(response({address("mebibyte")}).body.size(), std::size_t{1} << 20U);
    EXPECT_EQ(failure({address("mebibyte-and-one")}), "The server's answer is too long.");
    EXPECT_EQ(response({.url = address("text"), .maximumBodySize = 9}).body, "It works!");
    EXPECT_EQ(failure({.url = address("text"), .maximumBodySize = 8}), "The server's answer is too long.");
}

TEST_F(CurlHttpClientTest, ATooLongBodyIsToldAtOnceAndNotReadToItsEnd) {
    // One is announced and never sent, the other never ends.
    EXPECT_EQ(failure({address("five-megabytes-announced")}), "The server's answer is too long.");
    EXPECT_EQ(failure({address("endless")}), "The server's answer is too long.");
}

TEST_F(CurlHttpClientTest, WhatComesBeforeTheBodyIsBoundedToo) {
    for (const char* behaviour : {"endless-fields", "endless-field", "endless-first-line", "endless-interim-answers"}) {
        EXPECT_EQ(failure({address(behaviour)}), "The server's answer is too long.") << behaviour;
    }
}

// --- tokens
// -----------------------------------------------------------------------------------------------------------

TEST_F(CurlHttpClientTest, ADroppedTokenEndsTheRequestInSilence) {
    bool wasTold = false;
    const auto told = [&](const HttpResult&) { wasTold = true; };
    static_cast<void>(client.get({address("text")}, told));
    static_cast<void>(client.get({"http://127.0.0.1/"}, told));
    auto onItsWay = client.get({.url = address("silent"), .timeout = Seconds(60)}, told);
    // A request that was made later has ended: the dropped ones would have, too.
    EXPECT_EQ(response({address("text")}).status, 200);
    onItsWay.reset();  // which breaks the connection off: a connection that is still listened to says so at once
    EXPECT_EQ(failure({.url = address("silent"), .timeout = Seconds(0.2)}), "The request timed out.");
    EXPECT_FALSE(wasTold);
}

TEST_F(CurlHttpClientTest, ARequestUnderWayDoesNotHoldUpTheEndOfItsWorkers) {
    const auto start = std::chrono::steady_clock::now();
    {
        QtBackgroundWork brief;
        CurlHttpClient shortLived(mainLoop, brief, servers->authority());
        auto token = shortLived.get({.url = address("silent"), .timeout = Seconds(60)}, [](const HttpResult&) {});
        // An answer to a later request says that this one has long been sent.
        EXPECT_EQ(response({address("text")}).status, 200);
        token.reset();
    }
    EXPECT_LT(std::chrono::steady_clock::now() - start, 10s);
}

TEST_F(CurlHttpClientTest, TheCallbackMayDropItsTokenAndAskAgain) {
    QEventLoop events;
    Subscription token;
    int answers = 0;
    std::function<void(const HttpResult&)> again = [&](const HttpResult&) {
        if (++answers == 3) {
            token.reset();
            events.quit();
        } else {
            token = client.get({address("text")}, again);
        }
    };
    token = client.get({address("text")}, again);
    events.exec();
    EXPECT_EQ(answers, 3);
}

/// A name is being looked up, or no server answers yet, when the process ends.
[[noreturn]] void endWhileWaitingForAnAnswer(bool isGivenUp) {
    constexpr int status = 7;
    // What was there before the client is the tests' own and needs no end. What the client sets up ends before this.
    std::atexit([] { std::_Exit(status); });
    QTcpServer silent;
    silent.listen(QHostAddress::LocalHost);
    QtMainLoop mainLoop;
    QtBackgroundWork backgroundWork;
    CurlHttpClient client(mainLoop, backgroundWork);
    auto token = client.get({"https://localhost:" + std::to_string(silent.serverPort()) + "/"}, [](const auto&) {});
    while (!silent.hasPendingConnections()) {
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
    if (isGivenUp) {
        token.reset();
    }
    std::exit(status);
}

TEST(CurlHttpClientDeathTest, TheProcessEndsWithItsStatusWhileARequestIsUnderWay) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    qputenv("no_proxy", "localhost");
    for (const bool isGivenUp : {false, true}) {
        EXPECT_EXIT(endWhileWaitingForAnAnswer(isGivenUp), testing::ExitedWithCode(7), "");
    }
}

// --- the update check over a real connection
// --------------------------------------------------------------------------

class UpdateOverHttpsTest : public CurlHttpClientTest {
protected:
    /// Runs one check of a program whose version names what the server is to do.
    UpdateChecker::State check(const std::string& behaviour, const char* certificate = "good") {
        const auto& simulated = desktop.platform();
        const Platform platform{simulated.mainLoop,
                                simulated.backgroundWork,
                                simulated.log,
                                simulated.userDefaults,
                                simulated.application,
                                simulated.workspace,
                                simulated.windowInventory,
                                simulated.accessibilityObservers,
                                simulated.windowControl,
                                simulated.trust,
                                simulated.keyboardTaps,
                                simulated.screens,
                                simulated.pointer,
                                simulated.panel,
                                simulated.icons,
                                client,
                                simulated.loginItem,
                                simulated.texts};
        desktop.application().bundle.updateHost = servers->host(certificate);
        UpdateChecker checker(platform, AppVersion(behaviour));
        QEventLoop events;
        const auto patience = mainLoop.after(30s, [&] { events.quit(); });
        const auto subscription = checker.state().subscribeToChanges([&](const UpdateChecker::State& state) {
            if (!std::holds_alternative<UpdateChecker::Checking>(state)) {
                events.quit();
            }
        });
        checker.check();
        events.exec();
        return checker.state().get();
    }
    std::string failureOf(const std::string& behaviour, const char* certificate = "good") {
        const auto state = check(behaviour, certificate);
        const auto* failed = std::get_if<UpdateChecker::Failed>(&state);
        return failed != nullptr ? failed->text.untranslated() : "";
    }

    SimulatedDesktop desktop;
};

TEST_F(UpdateOverHttpsTest, ReadsAManifest) {
    const auto state = check("manifest");
    ASSERT_TRUE(std::holds_alternative<UpdateChecker::UpdateAvailable>(state));
    const auto& release = std::get<UpdateChecker::UpdateAvailable>(state).release;
    EXPECT_EQ(release.version.original(), "9.1");
    EXPECT_EQ(release.downloadURL, "https://ferrowyn.example/Ferrowyn-9.1.dmg");
    EXPECT_EQ(release.notes, "Ünïcode");
}

TEST_F(UpdateOverHttpsTest, AnOlderReleaseIsUpToDate) {
    EXPECT_EQ(check("same"), UpdateChecker::State(UpdateChecker::UpToDate{desktop.wallTime()}));
    EXPECT_EQ(desktop.userDefaults().real("updates.lastCheck"), desktop.wallTime().time_since_epoch().count());
}

TEST_F(UpdateOverHttpsTest, SaysWhatWentWrong) {
    EXPECT_EQ(failureOf("404"), "The update server replied with 404.");
    EXPECT_EQ(failureOf("500"), "The update server replied with 500.");
    EXPECT_EQ(failureOf("not-http"), "The update server replied with 0.");
    for (const char* body : {"no-url", "array", "text", "binary", "empty", "mebibyte"}) {
        EXPECT_EQ(failureOf(body), "The update manifest could not be read.") << body;
    }
    EXPECT_EQ(failureOf("redirect-http"), "The server redirects to an address that is not secure.");
    EXPECT_EQ(failureOf("redirect-for-ever"), "The server redirects too often.");
    EXPECT_EQ(failureOf("five-megabytes-announced"), "The server's answer is too long.");
    EXPECT_EQ(failureOf("endless"), "The server's answer is too long.");
    for (const char* certificate : {"unknown", "other-host", "expired"}) {
        EXPECT_THAT(failureOf("manifest", certificate), HasSubstr("certificate")) << certificate;
    }
    EXPECT_EQ(failureOf("cut-off"), "The server's answer is incomplete or damaged.");
    EXPECT_EQ(desktop.userDefaults().value("updates.lastCheck"), std::nullopt);
}

TEST_F(UpdateOverHttpsTest, ADownloadAddressThatIsNotHttpsIsShown) {
    const auto state = check("insecure-download");
    ASSERT_TRUE(std::holds_alternative<UpdateChecker::UpdateAvailable>(state));
    EXPECT_EQ(std::get<UpdateChecker::UpdateAvailable>(state).release.downloadURL, "http://ferrowyn.example/x");
}

}  // namespace
}  // namespace ferrowyn

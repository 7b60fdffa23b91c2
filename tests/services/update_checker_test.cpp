#include "services/update_checker.h"

#include <chrono>
#include <cstdint>
#include <limits>
#include <memory>

#include "platform/simulated/simulated_desktop.h"
#include "platform/simulated/simulated_system.h"

namespace ferrowyn {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

AppVersion version(const char* text) {
    return AppVersion(text);
}

TEST(AppVersionTest, ComparesNumbersAndNotTexts) {
    EXPECT_LT(version("1.9"), version("1.10"));
    EXPECT_FALSE(version("1.10") < version("1.9"));
    EXPECT_LT(version("1.99.99"), version("2"));
    EXPECT_LT(version("0.9"), version("1"));
}

TEST(AppVersionTest, MissingComponentsCountAsZero) {
    EXPECT_FALSE(version("1.2") < version("1.2.0"));
    EXPECT_FALSE(version("1.2.0") < version("1.2"));
    EXPECT_EQ(version("1.2"), version("1.2.0"));
    EXPECT_LT(version("1.2"), version("1.2.0.1"));
}

TEST(AppVersionTest, WhatFollowsTheFirstDashDoesNotCount) {
    EXPECT_EQ(version("1.3-beta"), version("1.3"));
    EXPECT_EQ(version("1.3-beta.9-2"), version("1.3"));
    EXPECT_THAT(version("1.3-beta.9").components(), ElementsAre(1, 3));
    EXPECT_LT(version("1.2.9-rc1"), version("1.3-alpha"));
}

TEST(AppVersionTest, KeepsTheTextAsItWasGiven) {
    EXPECT_EQ(version("v1.3-beta").original(), "v1.3-beta");
    EXPECT_EQ(version("").original(), "");
}

TEST(AppVersionTest, OnlyTheDigitsOfAPieceCount) {
    EXPECT_THAT(version("v1.b2x3").components(), ElementsAre(1, 23));
    EXPECT_THAT(version(" 4 . 5 ").components(), ElementsAre(4, 5));
    // Digits of other scripts are no decimal integers here.
    EXPECT_THAT(version("1.٣").components(), ElementsAre(1, 0));
}

TEST(AppVersionTest, APieceWithoutADigitReadsAsZero) {
    EXPECT_THAT(version("1..2").components(), ElementsAre(1, 0, 2));
    EXPECT_THAT(version("1.").components(), ElementsAre(1, 0));
    EXPECT_THAT(version("").components(), ElementsAre(0));
    EXPECT_THAT(version("-1.2").components(), ElementsAre(0));
    EXPECT_EQ(version(""), version("0.0"));
}

TEST(AppVersionTest, ANumberBeyondAllBoundsIsTheLargestOne) {
    constexpr auto largest = std::numeric_limits<std::int64_t>::max();
    EXPECT_THAT(version("9223372036854775806").components(), ElementsAre(largest - 1));
    EXPECT_THAT(version("9223372036854775807").components(), ElementsAre(largest));
    EXPECT_THAT(version("9223372036854775808").components(), ElementsAre(largest));
    EXPECT_THAT(version("99999999999999999999999.1").components(), ElementsAre(largest, 1));
}

using State = UpdateChecker::State;

constexpr const char* lastCheckKey = "updates.lastCheck";
constexpr const char* goodManifest =
    R"({"version": "1.3", "url": "https://ferrowyn.example/Ferrowyn-1.3.dmg", "notes": "Faster."})";

class UpdateCheckerTest : public testing::Test {
protected:
    void start(const char* currentVersion = "1.2", const std::optional<std::string>& host = "updates.example") {
        desktop.application().bundle.updateHost = host;
        checker = std::make_unique<UpdateChecker>(desktop.platform(), AppVersion(currentVersion));
    }
    /// Runs one check that is answered with this.
    void checkAnswered(const HttpResult& result) {
        checker->check();
        http.answer(http.requestCount() - 1, result);
    }
    void checkAnsweredWithBody(std::string body) { checkAnswered(HttpResponse{200, std::move(body)}); }
    [[nodiscard]] const State& state() const { return checker->state().get(); }
    [[nodiscard]] double wallSeconds() const { return desktop.wallTime().time_since_epoch().count(); }
    [[nodiscard]] double lastCheck() { return desktop.userDefaults().real(lastCheckKey); }
    void storeLastCheck(double seconds) { desktop.userDefaults().set(lastCheckKey, seconds); }

    static State failed(std::string text) { return UpdateChecker::Failed{Phrase::verbatim(std::move(text))}; }
    static State checking() { return UpdateChecker::Checking{}; }

    SimulatedDesktop desktop;
    SimulatedHttpClient& http = desktop.httpClient();
    std::unique_ptr<UpdateChecker> checker;
};

// --- the request
// ------------------------------------------------------------------------------------------------------

TEST_F(UpdateCheckerTest, IsIdleUntilTheFirstCheck) {
    start();
    EXPECT_EQ(state(), State(UpdateChecker::Idle{}));
    EXPECT_EQ(http.requestCount(), 0U);
}

TEST_F(UpdateCheckerTest, AsksForTheManifestWithItsVersionAndTheSystemsInThisOrder) {
    desktop.application().version = "14.5";
    start("1.2-beta");
    checker->check();
    EXPECT_EQ(state(), checking());
    ASSERT_EQ(http.requestCount(), 1U);
    EXPECT_EQ(http.request(0).url, "https://updates.example/appcast.json?v=1.2-beta&os=14.5");
    EXPECT_EQ(http.request(0).timeout, Seconds(10));
    EXPECT_EQ(http.request(0).maximumBodySize, 1024U * 1024U);
}

TEST_F(UpdateCheckerTest, AVersionWithOddCharactersStaysOneParameter) {
    start("1.2 &os=9");
    checker->check();
    EXPECT_EQ(http.request(0).url, "https://updates.example/appcast.json?v=1.2%20%26os%3D9&os=14.5");
}

TEST_F(UpdateCheckerTest, WithoutAServerNothingIsAskedAtTheStart) {
    start("1.2", std::nullopt);
    EXPECT_FALSE(checker->hasServer());
    checker->checkIfDue(true);
    EXPECT_EQ(http.requestCount(), 0U);
    EXPECT_EQ(state(), State(UpdateChecker::Idle{}));
    EXPECT_THAT(desktop.takeLog(), IsEmpty());
    start("1.2");
    EXPECT_TRUE(checker->hasServer());
}

TEST_F(UpdateCheckerTest, AHostThatMakesNoAddressFailsWithoutARequest) {
    for (const char* host : {"", "no host", "host:port"}) {
        start("1.2", host);
        checker->check();
        EXPECT_EQ(state(), failed("Could not build the update URL.")) << host;
    }
    EXPECT_EQ(http.requestCount(), 0U);
    EXPECT_EQ(desktop.userDefaults().value(lastCheckKey), std::nullopt);
}

// --- the answer
// -------------------------------------------------------------------------------------------------------

TEST_F(UpdateCheckerTest, ANewerReleaseIsAvailableAndLogged) {
    start();
    checkAnsweredWithBody(goodManifest);
    const UpdateChecker::Release release{AppVersion("1.3"), "https://ferrowyn.example/Ferrowyn-1.3.dmg", "Faster."};
    EXPECT_EQ(state(), State(UpdateChecker::UpdateAvailable{release}));
    EXPECT_EQ(std::get<UpdateChecker::UpdateAvailable>(state()).release.version.original(), "1.3");
    EXPECT_THAT(desktop.takeLog(),
                ElementsAre(SimulatedDesktop::LogLine{LogLevel::standard, "ui", "Update available: 1.3"}));
}

TEST_F(UpdateCheckerTest, AnEqualOrOlderReleaseIsUpToDateAtTheMomentOfTheAnswer) {
    for (const char* current : {"1.3", "1.3.0", "1.4", "1.10"}) {
        start(current);
        checker->check();
        desktop.advance(3s);
        http.answer(http.requestCount() - 1, HttpResponse{200, goodManifest});
        EXPECT_EQ(state(), State(UpdateChecker::UpToDate{desktop.wallTime()})) << current;
    }
    EXPECT_THAT(desktop.takeLog(), IsEmpty());
}

TEST_F(UpdateCheckerTest, APreReleaseInTheManifestComparesAsItsRelease) {
    start("1.3");
    checkAnsweredWithBody(R"({"version": "1.3-beta", "url": "https://ferrowyn.example/x"})");
    EXPECT_TRUE(std::holds_alternative<UpdateChecker::UpToDate>(state()));
    start("1.2.9");
    checkAnsweredWithBody(R"({"version": "1.3-beta", "url": "https://ferrowyn.example/x"})");
    ASSERT_TRUE(std::holds_alternative<UpdateChecker::UpdateAvailable>(state()));
    EXPECT_EQ(std::get<UpdateChecker::UpdateAvailable>(state()).release.version.original(), "1.3-beta");
    EXPECT_THAT(desktop.takeLog(),
                ElementsAre(SimulatedDesktop::LogLine{LogLevel::standard, "ui", "Update available: 1.3-beta"}));
}

TEST_F(UpdateCheckerTest, AStatusThatIsNoSuccessIsNamed) {
    start();
    for (const int status : {404, 500, 301, 199, 300, 0}) {
        checkAnswered(HttpResponse{status, goodManifest});
        EXPECT_EQ(state(), failed("The update server replied with " + std::to_string(status) + "."));
    }
    EXPECT_EQ(desktop.userDefaults().value(lastCheckKey), std::nullopt);
}

TEST_F(UpdateCheckerTest, EveryStatusOfSuccessCounts) {
    start();
    for (const int status : {200, 204, 299}) {
        checkAnswered(HttpResponse{status, goodManifest});
        EXPECT_TRUE(std::holds_alternative<UpdateChecker::UpdateAvailable>(state())) << status;
    }
}

TEST_F(UpdateCheckerTest, ATransportErrorIsShownInItsOwnWords) {
    start();
    checkAnswered(HttpFailure{"The network is asleep."});
    EXPECT_EQ(state(), failed("The network is asleep."));
    EXPECT_EQ(desktop.userDefaults().value(lastCheckKey), std::nullopt);
}

TEST_F(UpdateCheckerTest, AManifestThatCannotBeReadSaysSoAndStoresNothing) {
    start();
    for (const char* body :
         {"", "no JSON", "[]", "\"1.3\"", "null", R"({"version": "1.3"})", R"({"url": "https://ferrowyn.example/x"})",
          R"({"version": 1.3, "url": "https://ferrowyn.example/x"})", R"({"version": "1.3", "url": 7})",
          R"({"version": "1.3", "url": null})", R"({"version": "1.3", "url": ""})",
          R"({"version": "1.3", "url": "not an address"})", R"({"version": "1.3", "url": "https://x.example/\u0000"})",
          R"({"version": "1.3", "url": "https://ferrowyn.example/x")",
          R"({"version": "1.3", "url": "https://ferrowyn.example/x"} trailing)", "{\"version\": \"\xFF\"}"}) {
        checkAnsweredWithBody(body);
        EXPECT_EQ(state(), failed("The update manifest could not be read.")) << body;
    }
    EXPECT_EQ(desktop.userDefaults().value(lastCheckKey), std::nullopt);
}

TEST_F(UpdateCheckerTest, AVersionThatIsNotWrittenAsOneReachesNeitherLogNorLabel) {
    start();
    for (const std::string& version :
         {std::string(R"(9\u001b]0;title\u0007)"), std::string(R"(9\u001b[31m)"), std::string(R"(9\n9)"),
          std::string(R"(9\u0000)"), std::string(R"(9\u0085)"), std::string(R"(9\u202e)"), std::string(R"(9\u200b)"),
          std::string("9 <b>new</b>"), std::string("9 & 10"), std::string("٣"), "9." + std::string(63, '0')}) {
        checkAnsweredWithBody(R"({"version": ")" + version + R"(", "url": "https://ferrowyn.example/x"})");
        EXPECT_EQ(state(), failed("The update manifest could not be read.")) << version;
    }
    EXPECT_THAT(desktop.takeLog(), IsEmpty());
    EXPECT_EQ(desktop.userDefaults().value(lastCheckKey), std::nullopt);
    for (const std::string& version :
         {std::string("9"), std::string("9.1-beta.2"), std::string("v9.1"), std::string("9.1_2"),
          std::string("2027.1~rc1+build7"), std::string("9.1 RC 2"), "9." + std::string(62, '0')}) {
        checkAnsweredWithBody(R"({"version": ")" + version + R"(", "url": "https://ferrowyn.example/x"})");
        ASSERT_TRUE(std::holds_alternative<UpdateChecker::UpdateAvailable>(state())) << version;
        EXPECT_EQ(std::get<UpdateChecker::UpdateAvailable>(state()).release.version.original(), version);
    }
}

TEST_F(UpdateCheckerTest, NotesAreTakenOnlyWhenTheyAreText) {
    start();
    for (const char* notes : {"", R"(, "notes": 7)", R"(, "notes": null)", R"(, "notes": ["x"])"}) {
        checkAnsweredWithBody(R"({"version": "1.3", "url": "https://ferrowyn.example/x")" + std::string(notes) + "}");
        ASSERT_TRUE(std::holds_alternative<UpdateChecker::UpdateAvailable>(state())) << notes;
        EXPECT_EQ(std::get<UpdateChecker::UpdateAvailable>(state()).release.notes, std::nullopt) << notes;
    }
}

TEST_F(UpdateCheckerTest, FurtherMembersOfTheManifestAreIgnored) {
    start();
    checkAnsweredWithBody(
        R"({"minimum": {"os": [13]}, "version": "1.3", "url": "https://ferrowyn.example/x", "size": 1e6})");
    EXPECT_TRUE(std::holds_alternative<UpdateChecker::UpdateAvailable>(state()));
}

TEST_F(UpdateCheckerTest, ADeeplyNestedManifestIsReadWithoutHarm) {
    start();
    constexpr std::size_t depth = 500'000;
    checkAnsweredWithBody(std::string(depth, '[') + std::string(depth, ']'));
    EXPECT_EQ(state(), failed("The update manifest could not be read."));
}

TEST_F(UpdateCheckerTest, TheTimeOfAWellFormedAnswerIsStoredBeforeTheStateIsPublished) {
    start();
    desktop.setWallTime(WallTime(1'800'000'000.25s));
    checker->check();
    desktop.advance(2s);
    std::vector<double> storedWhenTold;
    const auto subscription =
        checker->state().subscribeToChanges([&](const State&) { storedWhenTold.push_back(lastCheck()); });
    http.answer(0, HttpResponse{200, goodManifest});
    EXPECT_THAT(storedWhenTold, ElementsAre(1'800'000'002.25));
    EXPECT_EQ(desktop.storedValues().size(), 1U);
}

// --- several checks
// ---------------------------------------------------------------------------------------------------

TEST_F(UpdateCheckerTest, OfTwoChecksInQuickSuccessionOnlyTheSecondIsPublished) {
    start();
    std::vector<State> states;
    const auto subscription = checker->state().subscribeToChanges([&](const State& now) { states.push_back(now); });
    checker->check();
    checker->check();
    EXPECT_TRUE(http.hasEnded(0));
    http.answer(0, HttpResponse{404, ""});
    EXPECT_EQ(state(), checking());
    http.answer(1, HttpResponse{500, ""});
    EXPECT_THAT(states, ElementsAre(checking(), checking(), failed("The update server replied with 500.")));
}

TEST_F(UpdateCheckerTest, AFailedCheckIsNotTriedAgainByItself) {
    start();
    checkAnswered(HttpFailure{"No network."});
    desktop.advance(48h);
    EXPECT_EQ(http.requestCount(), 1U);
    EXPECT_EQ(desktop.pendingTimerCount(), 0U);
}

TEST_F(UpdateCheckerTest, ASubscriberMayStartTheNextCheckWhenItIsTold) {
    start();
    const auto subscription = checker->state().subscribeToChanges([&](const State& now) {
        if (now == failed("First.")) {
            checker->check();
        }
    });
    checkAnswered(HttpFailure{"First."});
    EXPECT_EQ(state(), checking());
    ASSERT_EQ(http.requestCount(), 2U);
    http.answer(1, HttpResponse{200, goodManifest});
    EXPECT_TRUE(std::holds_alternative<UpdateChecker::UpdateAvailable>(state()));
}

TEST_F(UpdateCheckerTest, ACheckInFlightEndsWithTheChecker) {
    start();
    checker->check();
    checker.reset();
    EXPECT_TRUE(http.hasEnded(0));
}

// --- when a check is due
// ----------------------------------------------------------------------------------------------

TEST_F(UpdateCheckerTest, TheFirstStartChecks) {
    start();
    checker->checkIfDue(true);
    EXPECT_EQ(http.requestCount(), 1U);
    EXPECT_EQ(state(), checking());
}

TEST_F(UpdateCheckerTest, NothingIsAskedWhileAutomaticChecksAreOff) {
    start();
    checker->checkIfDue(false);
    EXPECT_EQ(http.requestCount(), 0U);
    EXPECT_EQ(state(), State(UpdateChecker::Idle{}));
}

TEST_F(UpdateCheckerTest, ACheckTwentyThreeHoursAgoIsEnoughAndOneTwentyFiveHoursAgoIsNot) {
    start();
    storeLastCheck(wallSeconds() - 23 * 3600);
    checker->checkIfDue(true);
    EXPECT_EQ(http.requestCount(), 0U);
    storeLastCheck(wallSeconds() - 25 * 3600);
    checker->checkIfDue(true);
    EXPECT_EQ(http.requestCount(), 1U);
}

TEST_F(UpdateCheckerTest, ACheckIsDueAfterExactlyADay) {
    start();
    storeLastCheck(wallSeconds() - 86'399);
    checker->checkIfDue(true);
    EXPECT_EQ(http.requestCount(), 0U);
    storeLastCheck(wallSeconds() - 86'400);
    checker->checkIfDue(true);
    EXPECT_EQ(http.requestCount(), 1U);
}

TEST_F(UpdateCheckerTest, AStoredTimeOfZeroOrBelowMeansNever) {
    start();
    for (const double stored : {0.0, -5.0}) {
        storeLastCheck(stored);
        const auto before = http.requestCount();
        checker->checkIfDue(true);
        EXPECT_EQ(http.requestCount(), before + 1) << stored;
    }
}

TEST_F(UpdateCheckerTest, ARunningProgramDoesNotCheckByItself) {
    start();
    storeLastCheck(wallSeconds());
    checker->checkIfDue(true);
    desktop.advance(72h);
    EXPECT_EQ(http.requestCount(), 0U);
}

// --- the download page
// ------------------------------------------------------------------------------------------------

TEST_F(UpdateCheckerTest, OpensTheDownloadAddressOfAnAvailableRelease) {
    start();
    checkAnsweredWithBody(goodManifest);
    checker->openDownloadPage();
    EXPECT_THAT(desktop.takeControlCalls(), ElementsAre("open https://ferrowyn.example/Ferrowyn-1.3.dmg"));
}

TEST_F(UpdateCheckerTest, OpensTheHomePageInEveryOtherState) {
    const std::string homePage = "open https://ferrowyn.example";
    start();
    checker->openDownloadPage();
    checker->check();
    checker->openDownloadPage();
    http.answer(0, HttpResponse{404, ""});
    checker->openDownloadPage();
    start("2");
    checkAnsweredWithBody(goodManifest);
    checker->openDownloadPage();
    EXPECT_THAT(desktop.takeControlCalls(), ElementsAre(homePage, homePage, homePage, homePage));
    EXPECT_THAT(desktop.takeLog(), IsEmpty());
}

TEST_F(UpdateCheckerTest, WithoutAHomePageNothingIsOpened) {
    desktop.application().bundle.homePage.reset();
    start();
    checker->openDownloadPage();
    EXPECT_THAT(desktop.takeControlCalls(), IsEmpty());
    checkAnsweredWithBody(goodManifest);
    checker->openDownloadPage();
    EXPECT_THAT(desktop.takeControlCalls(), ElementsAre("open https://ferrowyn.example/Ferrowyn-1.3.dmg"));
}

TEST_F(UpdateCheckerTest, ADownloadAddressThatIsNotHttpsIsShownButNeverOpened) {
    start();
    for (const std::string address :
         {"http://ferrowyn.example/x.dmg", "file:///usr/bin/xterm", "x-apple.systempreferences:x", "x.dmg"}) {
        checkAnsweredWithBody(R"({"version": "1.3", "url": ")" + address + "\"}");
        ASSERT_TRUE(std::holds_alternative<UpdateChecker::UpdateAvailable>(state())) << address;
        EXPECT_EQ(std::get<UpdateChecker::UpdateAvailable>(state()).release.downloadURL, address);
        static_cast<void>(desktop.takeLog());
        checker->openDownloadPage();
        EXPECT_THAT(desktop.takeControlCalls(), ElementsAre("open https://ferrowyn.example"));
        const auto log = desktop.takeLog();
        ASSERT_EQ(log.size(), 1U);
        EXPECT_EQ(log[0].category, "ui");
        EXPECT_THAT(log[0].message, HasSubstr("\"" + address + "\" is not an https address"));
    }
}

}  // namespace
}  // namespace ferrowyn

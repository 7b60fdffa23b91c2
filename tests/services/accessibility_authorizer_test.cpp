#include "services/accessibility_authorizer.h"

#include <chrono>
#include <memory>

#include "platform/simulated/simulated_desktop.h"

namespace ferrowyn {
namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::IsEmpty;
using Status = AccessibilityAuthorizer::Status;

SimulatedDesktop::LogLine permissionLine(std::string message) {
    return {LogLevel::standard, "permissions", std::move(message)};
}

class AccessibilityAuthorizerTest : public testing::Test {
protected:
    void start(bool isTrusted) {
        desktop.setTrusted(isTrusted);
        authorizer = std::make_unique<AccessibilityAuthorizer>(desktop.platform());
        static_cast<void>(desktop.takeLog());
    }

    SimulatedDesktop desktop;
    std::unique_ptr<AccessibilityAuthorizer> authorizer;
};

TEST_F(AccessibilityAuthorizerTest, StartsWithWhatIsTrueAtThatMoment) {
    start(true);
    EXPECT_EQ(authorizer->status().get(), Status::trusted);
    EXPECT_FALSE(authorizer->isSecureInputActive().get());
    EXPECT_FALSE(authorizer->hasRequestedTrust());
    EXPECT_EQ(desktop.trustPromptCount(), 0);
    start(false);
    EXPECT_EQ(authorizer->status().get(), Status::notTrusted);
}

TEST_F(AccessibilityAuthorizerTest, SeesAGrantWithinASecondWithoutNotificationAndLogsItOnce) {
    start(false);
    desktop.advance(0.5s);
    desktop.setTrusted(true);
    desktop.advance(0.49s);
    EXPECT_EQ(authorizer->status().get(), Status::notTrusted);
    desktop.advance(0.01s);
    EXPECT_EQ(authorizer->status().get(), Status::trusted);
    desktop.advance(10s);
    EXPECT_THAT(desktop.takeLog(), ElementsAre(permissionLine("Accessibility trust changed to trusted")));
}

TEST_F(AccessibilityAuthorizerTest, SeesARevocationWithinTwoSecondsWithoutNotification) {
    start(true);
    desktop.setTrusted(false);
    desktop.advance(1.99s);
    EXPECT_EQ(authorizer->status().get(), Status::trusted);
    desktop.advance(0.01s);
    EXPECT_EQ(authorizer->status().get(), Status::notTrusted);
    EXPECT_THAT(desktop.takeLog(), ElementsAre(permissionLine("Accessibility trust changed to notTrusted")));
}

TEST_F(AccessibilityAuthorizerTest, TheBackstopFollowsTheNewStatus) {
    start(false);
    desktop.setTrusted(true);
    desktop.advance(1s);
    ASSERT_EQ(authorizer->status().get(), Status::trusted);
    desktop.setTrusted(false);
    desktop.advance(1.99s);
    EXPECT_EQ(authorizer->status().get(), Status::trusted);
    desktop.advance(0.01s);
    EXPECT_EQ(authorizer->status().get(), Status::notTrusted);
    desktop.setTrusted(true);
    desktop.advance(1s);
    EXPECT_EQ(authorizer->status().get(), Status::trusted);
}

TEST_F(AccessibilityAuthorizerTest, ANotificationIsAnsweredAQuarterOfASecondLater) {
    start(true);
    desktop.setTrusted(false, true);
    desktop.advance(0.24s);
    EXPECT_EQ(authorizer->status().get(), Status::trusted);
    desktop.advance(0.01s);
    EXPECT_EQ(authorizer->status().get(), Status::notTrusted);
}

TEST_F(AccessibilityAuthorizerTest, ComingBackToTheProgramIsANotificationToo) {
    start(true);
    desktop.setTrusted(false);
    desktop.becomeActiveApplication();
    desktop.advance(0.24s);
    EXPECT_EQ(authorizer->status().get(), Status::trusted);
    desktop.advance(0.01s);
    EXPECT_EQ(authorizer->status().get(), Status::notTrusted);
}

TEST_F(AccessibilityAuthorizerTest, TwoNotificationsCauseTwoRefreshesAndOneChange) {
    start(true);
    int publications = 0;
    const auto subscription = authorizer->status().subscribeToChanges([&](Status) { ++publications; });
    const auto timersAtRest = desktop.pendingTimerCount();
    desktop.setTrusted(false, true);
    desktop.advance(0.1s);
    desktop.announceTrustChange();
    EXPECT_EQ(desktop.pendingTimerCount(), timersAtRest + 2);
    desktop.advance(0.15s);
    EXPECT_EQ(publications, 1);
    EXPECT_EQ(desktop.pendingTimerCount(), timersAtRest + 1);
    desktop.advance(0.1s);
    EXPECT_EQ(publications, 1);
    EXPECT_EQ(desktop.pendingTimerCount(), timersAtRest);
    EXPECT_THAT(desktop.takeLog(), ElementsAre(permissionLine("Accessibility trust changed to notTrusted")));
}

TEST_F(AccessibilityAuthorizerTest, TheSecondOfTwoNotificationsStillSeesAChangeOfItsOwn) {
    start(true);
    desktop.announceTrustChange();
    desktop.advance(0.1s);
    desktop.announceTrustChange();
    desktop.advance(0.2s);
    desktop.setTrusted(false);
    desktop.advance(0.05s);
    EXPECT_EQ(authorizer->status().get(), Status::notTrusted);
}

TEST_F(AccessibilityAuthorizerTest, ARefreshWithoutAChangeIsSilent) {
    start(true);
    int publications = 0;
    const auto subscription = authorizer->status().subscribeToChanges([&](Status) { ++publications; });
    authorizer->refresh();
    EXPECT_EQ(publications, 0);
    EXPECT_THAT(desktop.takeLog(), IsEmpty());
}

TEST_F(AccessibilityAuthorizerTest, LogsBeforeItPublishes) {
    start(true);
    std::size_t linesWhenTold = 0;
    const auto subscription =
        authorizer->status().subscribeToChanges([&](Status) { linesWhenTold = desktop.takeLog().size(); });
    desktop.setTrusted(false);
    authorizer->refresh();
    EXPECT_EQ(linesWhenTold, 1U);
}

TEST_F(AccessibilityAuthorizerTest, RequestingTrustPromptsOnceAndReadsAgain) {
    start(false);
    desktop.setTrusted(true);
    authorizer->requestTrust();
    EXPECT_EQ(desktop.trustPromptCount(), 1);
    EXPECT_TRUE(authorizer->hasRequestedTrust());
    EXPECT_EQ(authorizer->status().get(), Status::trusted);
}

TEST_F(AccessibilityAuthorizerTest, OpensTheAccessibilityListOfTheSettings) {
    start(false);
    static_cast<void>(desktop.takeControlCalls());
    authorizer->openAccessibilitySettings();
    EXPECT_THAT(desktop.takeControlCalls(), ElementsAre("settings accessibility"));
}

TEST_F(AccessibilityAuthorizerTest, PublishesSecureInputOncePerChangeWithinTwoSeconds) {
    start(true);
    std::vector<bool> told;
    const auto subscription =
        authorizer->isSecureInputActive().subscribeToChanges([&](bool isActive) { told.push_back(isActive); });
    desktop.setSecureInput(true);
    desktop.advance(1.99s);
    EXPECT_THAT(told, IsEmpty());
    desktop.advance(0.01s);
    EXPECT_THAT(told, ElementsAre(true));
    desktop.advance(10s);
    desktop.setSecureInput(false);
    desktop.advance(2s);
    desktop.advance(10s);
    EXPECT_THAT(told, ElementsAre(true, false));
    EXPECT_THAT(desktop.takeLog(),
                ElementsAre(permissionLine("Secure input active: true"), permissionLine("Secure input active: false")));
}

TEST_F(AccessibilityAuthorizerTest, SecureInputThatIsOnAtTheStartIsKnownAtOnceAndNotLogged) {
    desktop.setSecureInput(true);
    start(true);
    EXPECT_TRUE(authorizer->isSecureInputActive().get());
    desktop.advance(10s);
    EXPECT_THAT(desktop.takeLog(), IsEmpty());
}

TEST_F(AccessibilityAuthorizerTest, LeavesNoTimerBehind) {
    const auto before = desktop.pendingTimerCount();
    start(true);
    desktop.announceTrustChange();
    EXPECT_GT(desktop.pendingTimerCount(), before);
    authorizer.reset();
    EXPECT_EQ(desktop.pendingTimerCount(), before);
    desktop.announceTrustChange();
    desktop.advance(10s);
}

}  // namespace
}  // namespace ferrowyn

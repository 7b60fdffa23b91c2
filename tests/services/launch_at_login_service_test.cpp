#include "services/launch_at_login_service.h"

#include <memory>
#include <tuple>

#include "core/texts.h"
#include "platform/simulated/simulated_desktop.h"
#include "platform/simulated/simulated_system.h"

namespace ferrowyn {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using State = LaunchAtLoginService::State;
using Status = LoginItem::Status;

constexpr const char* unavailableReason = "Ferrowyn must be in /Applications to launch at login.";
constexpr const char* refusedMessage = "macOS refused the request. Move Ferrowyn to /Applications and try again.";
constexpr const char* approvalMessage = "Approve Ferrowyn in System Settings → General → Login Items.";

const State enabled = LaunchAtLoginService::Enabled{};
const State disabled = LaunchAtLoginService::Disabled{};
const State requiresApproval = LaunchAtLoginService::RequiresApproval{};
const State unavailable = LaunchAtLoginService::Unavailable{unavailableReason};

class LaunchAtLoginServiceTest : public testing::Test {
protected:
    void start(Status status) {
        item.current = status;
        service = std::make_unique<LaunchAtLoginService>(desktop.platform());
    }
    [[nodiscard]] const State& state() const { return service->state().get(); }

    SimulatedDesktop desktop;
    SimulatedLoginItem& item = desktop.loginItem();
    std::unique_ptr<LaunchAtLoginService> service;
};

TEST_F(LaunchAtLoginServiceTest, EveryStatusHasItsState) {
    const std::vector<std::pair<Status, State>> table{{Status::enabled, enabled},
                                                      {Status::requiresApproval, requiresApproval},
                                                      {Status::notFound, unavailable},
                                                      {Status::notRegistered, disabled},
                                                      {static_cast<Status>(99), disabled}};
    for (const auto& [status, expected] : table) {
        start(status);
        EXPECT_EQ(state(), expected) << static_cast<int>(status);
    }
    EXPECT_THAT(item.requests, IsEmpty());
    EXPECT_THAT(desktop.takeLog(), IsEmpty());
}

TEST_F(LaunchAtLoginServiceTest, StartsAtLoginWhenEnabledAndAlsoWhileTheUserStillHasToAllowIt) {
    for (const auto& [status, isOn, isToBeAllowed] :
         {std::tuple(Status::enabled, true, false), std::tuple(Status::requiresApproval, true, true),
          std::tuple(Status::notRegistered, false, false), std::tuple(Status::notFound, false, false)}) {
        start(status);
        EXPECT_EQ(service->startsAtLogin(), isOn) << static_cast<int>(status);
        EXPECT_EQ(service->requiresApproval(), isToBeAllowed) << static_cast<int>(status);
    }
}

TEST_F(LaunchAtLoginServiceTest, AProgramOutsideItsFolderIsUnavailableAndSaysWhy) {
    start(Status::notFound);
    EXPECT_EQ(state(), unavailable);
    EXPECT_EQ(service->explanatoryMessage(), unavailableReason);
}

TEST_F(LaunchAtLoginServiceTest, FollowsTheSystemEachTimeTheProgramBecomesActive) {
    start(Status::requiresApproval);
    item.current = Status::enabled;
    EXPECT_EQ(state(), requiresApproval);
    desktop.becomeActiveApplication();
    EXPECT_EQ(state(), enabled);
    service.reset();
    desktop.becomeActiveApplication();
}

TEST_F(LaunchAtLoginServiceTest, TurningItOnRegistersAndTurningItOffUnregisters) {
    start(Status::notRegistered);
    service->setEnabled(true);
    EXPECT_EQ(state(), enabled);
    service->setEnabled(false);
    EXPECT_EQ(state(), disabled);
    EXPECT_THAT(item.requests, ElementsAre(true, false));
    EXPECT_THAT(
        desktop.takeLog(),
        ElementsAre(SimulatedDesktop::LogLine{LogLevel::standard, "permissions", "Launch at login set to true"},
                    SimulatedDesktop::LogLine{LogLevel::standard, "permissions", "Launch at login set to false"}));
    EXPECT_EQ(service->explanatoryMessage(), std::nullopt);
}

TEST_F(LaunchAtLoginServiceTest, AFailedRequestIsShownAndLoggedInTheErrorsOwnWords) {
    start(Status::notRegistered);
    item.error = LoginItem::Error{"NSCocoaErrorDomain", 4, "The disk is full."};
    // The request fails and yet the system has changed its mind.
    item.current = Status::requiresApproval;
    service->setEnabled(true);
    EXPECT_EQ(service->lastError().get(), "The disk is full.");
    EXPECT_EQ(service->explanatoryMessage(), "The disk is full.");
    EXPECT_EQ(state(), requiresApproval);
    EXPECT_THAT(desktop.takeLog(),
                ElementsAre(SimulatedDesktop::LogLine{LogLevel::error, "permissions",
                                                      "Launch at login toggle failed: The disk is full."}));
    EXPECT_THAT(item.requests, ElementsAre(true));
}

TEST_F(LaunchAtLoginServiceTest, ARefusalOfTheServiceSaysWhatToDo) {
    start(Status::enabled);
    item.error = LoginItem::Error{"SMAppServiceErrorDomain", 108, "Job not found."};
    service->setEnabled(false);
    EXPECT_EQ(service->lastError().get(), refusedMessage);
    EXPECT_EQ(state(), enabled);
    EXPECT_THAT(desktop.takeLog(),
                ElementsAre(SimulatedDesktop::LogLine{LogLevel::error, "permissions",
                                                      "Launch at login toggle failed: Job not found."}));
}

TEST_F(LaunchAtLoginServiceTest, TheRefusalsCodeCountsInWhateverDomain) {
    start(Status::notRegistered);
    item.error = LoginItem::Error{"NSPOSIXErrorDomain", 1, "Operation not permitted"};
    service->setEnabled(true);
    EXPECT_EQ(service->explanatoryMessage(), refusedMessage);
}

TEST_F(LaunchAtLoginServiceTest, ASuccessfulRequestAfterAFailedOneClearsTheError) {
    start(Status::notRegistered);
    item.error = LoginItem::Error{"NSCocoaErrorDomain", 4, "The disk is full."};
    service->setEnabled(true);
    ASSERT_TRUE(service->lastError().get());
    item.error.reset();
    service->setEnabled(true);
    EXPECT_EQ(service->lastError().get(), std::nullopt);
    EXPECT_EQ(service->explanatoryMessage(), std::nullopt);
}

TEST_F(LaunchAtLoginServiceTest, TheOldErrorIsGoneWhileTheRequestRuns) {
    start(Status::notRegistered);
    item.error = LoginItem::Error{"NSCocoaErrorDomain", 4, "The disk is full."};
    service->setEnabled(true);
    std::vector<std::optional<std::string>> told;
    const auto subscription = service->lastError().subscribeToChanges(
        [&](const std::optional<std::string>& error) { told.push_back(error); });
    service->setEnabled(true);
    EXPECT_THAT(told, ElementsAre(std::nullopt, "The disk is full."));
}

TEST_F(LaunchAtLoginServiceTest, WaitingForApprovalWithoutAnErrorAsksForIt) {
    start(Status::notRegistered);
    item.statusAfterRegistering = Status::requiresApproval;
    service->setEnabled(true);
    EXPECT_EQ(state(), requiresApproval);
    EXPECT_EQ(service->explanatoryMessage(), approvalMessage);
}

TEST_F(LaunchAtLoginServiceTest, AnErrorGoesBeforeEveryOtherMessage) {
    start(Status::notFound);
    item.error = LoginItem::Error{"NSCocoaErrorDomain", 4, "The disk is full."};
    service->setEnabled(true);
    EXPECT_EQ(state(), unavailable);
    EXPECT_EQ(service->explanatoryMessage(), "The disk is full.");
}

TEST_F(LaunchAtLoginServiceTest, OpensTheLoginItemsOfTheSettings) {
    start(Status::requiresApproval);
    service->openLoginItemsSettings();
    EXPECT_THAT(desktop.takeControlCalls(), ElementsAre("settings loginItems"));
}

TEST_F(LaunchAtLoginServiceTest, TheLinuxTextsNameNoMac) {
    EXPECT_EQ(linuxTexts().loginItemUnavailable,
              "Ferrowyn must be able to write to the autostart folder to launch at login.");
    EXPECT_EQ(linuxTexts().loginItemRefused,
              "The system refused the request. Make sure that the autostart folder is yours and try again.");
    EXPECT_EQ(linuxTexts().loginItemApproval,
              "Your desktop keeps Ferrowyn from starting: allow it in the autostart settings, or turn this off and on "
              "again.");
}

}  // namespace
}  // namespace ferrowyn

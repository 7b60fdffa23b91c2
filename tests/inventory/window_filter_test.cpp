#include "inventory/window_filter.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace ferrowyn {
namespace {

using ::testing::ElementsAre;

constexpr Pid ownPid = 7;

RunningApplication application(std::optional<std::string> bundleIdentifier, std::optional<std::string> name = "Mail") {
    return {.pid = 100, .bundleIdentifier = std::move(bundleIdentifier), .localizedName = std::move(name)};
}

class WindowFilterTest : public ::testing::Test {
protected:
    WindowFilter filter{ownPid};
    /// What the window server says of an ordinary window.
    WindowMetadata metadata{.isOnScreen = true, .isOnActiveSpace = true, .bounds = {0, 0, 800, 600}, .pid = 100};

    /// A standard window that the window server lists.
    [[nodiscard]] WindowFilter::Candidate standard(Rect frame = {0, 0, 800, 600}) const {
        return {.subrole = "AXStandardWindow", .title = "Inbox", .frame = frame, .metadata = &metadata};
    }
    [[nodiscard]] WindowFilter::Candidate titled(std::optional<std::string_view> subrole,
                                                 std::string_view title) const {
        return {.subrole = subrole, .title = title, .frame = Rect{0, 0, 800, 600}, .metadata = &metadata};
    }
};

TEST_F(WindowFilterTest, KnowsWhichApplicationsAreNeverListed) {
    EXPECT_THAT(WindowFilter::excludedBundleIdentifiers,
                ElementsAre("com.apple.dock", "com.apple.controlcenter", "com.apple.notificationcenterui",
                            "com.apple.systemuiserver", "com.apple.Spotlight", "com.apple.loginwindow",
                            "com.apple.SecurityAgent", "com.apple.WindowManager", "com.apple.screencaptureui",
                            "com.apple.wallpaper.agent", "com.apple.dock.extra", "com.apple.CoreLocationAgent",
                            "com.apple.TextInputMenuAgent", "com.apple.TextInputSwitcher",
                            "com.apple.universalaccess.MagnifierWindow", "com.apple.PowerChime",
                            "com.apple.UserNotificationCenter", "com.apple.talagent",
                            "com.apple.dt.Xcode.PlaygroundStub-macosx"));
    for (const auto identifier : WindowFilter::excludedBundleIdentifiers) {
        EXPECT_FALSE(filter.isSwitchable(application(std::string(identifier)))) << identifier;
    }
    EXPECT_THAT(WindowFilter::excludedProcessNames,
                ElementsAre("Window Server", "WindowServer", "Wallpaper", "universalaccessd"));
    for (const auto name : WindowFilter::excludedProcessNames) {
        EXPECT_FALSE(filter.isSwitchable(application(std::nullopt, std::string(name)))) << name;
    }
    EXPECT_THAT(WindowFilter::standardWindowSubroles, ElementsAre("AXStandardWindow"));
    EXPECT_THAT(WindowFilter::dialogSubroles, ElementsAre("AXDialog", "AXSystemDialog"));
}

TEST_F(WindowFilterTest, NeverListsTheSwitcherItself) {
    auto self = application("org.example.unlisted");
    self.pid = ownPid;
    EXPECT_FALSE(filter.isSwitchable(self));
    self.pid = ownPid + 1;
    EXPECT_TRUE(filter.isSwitchable(self));
}

TEST_F(WindowFilterTest, ExcludesTerminatedAndProhibitedApplications) {
    auto terminated = application("org.example.mail");
    terminated.isTerminated = true;
    EXPECT_FALSE(filter.isSwitchable(terminated));

    auto prohibited = application("org.example.mail");
    prohibited.activationPolicy = ActivationPolicy::prohibited;
    EXPECT_FALSE(filter.isSwitchable(prohibited));
}

TEST_F(WindowFilterTest, AdmitsRegularAndAccessoryApplications) {
    auto accessory = application("org.example.menubar");
    accessory.activationPolicy = ActivationPolicy::accessory;
    EXPECT_TRUE(filter.isSwitchable(accessory));
    EXPECT_TRUE(filter.isSwitchable(application("org.example.mail")));
    EXPECT_EQ(static_cast<int>(ActivationPolicy::regular), 0);
    EXPECT_EQ(static_cast<int>(ActivationPolicy::accessory), 1);
    EXPECT_EQ(static_cast<int>(ActivationPolicy::prohibited), 2);
}

TEST_F(WindowFilterTest, MatchesBundleIdentifiersExactly) {
    EXPECT_FALSE(filter.isSwitchable(application("com.apple.dock.extra")));
    EXPECT_TRUE(filter.isSwitchable(application("com.apple.dock.something")));
    EXPECT_TRUE(filter.isSwitchable(application("com.apple.spotlight")));
    EXPECT_TRUE(filter.isSwitchable(application("")));
}

TEST_F(WindowFilterTest, ConsultsTheNameOnlyWithoutABundleIdentifier) {
    EXPECT_FALSE(filter.isSwitchable(application(std::nullopt, "WindowServer")));
    EXPECT_TRUE(filter.isSwitchable(application(std::nullopt, "windowserver")));
    EXPECT_TRUE(filter.isSwitchable(application("org.example.paper", "Wallpaper")));
    EXPECT_TRUE(filter.isSwitchable(application(std::nullopt, std::nullopt)));
}

TEST_F(WindowFilterTest, KeepsADialogOnlyWithATitle) {
    for (const std::string_view dialog : {"AXDialog", "AXSystemDialog"}) {
        EXPECT_FALSE(filter.isSwitchable(titled(dialog, ""))) << dialog;
        EXPECT_FALSE(filter.isSwitchable(titled(dialog, "   "))) << dialog;
        EXPECT_FALSE(filter.isSwitchable(titled(dialog, "\t\u00A0\u2003"))) << dialog;
        EXPECT_TRUE(filter.isSwitchable(titled(dialog, "  Save  "))) << dialog;
        // Newlines are no blanks here.
        EXPECT_TRUE(filter.isSwitchable(titled(dialog, "\n"))) << dialog;
    }
}

TEST_F(WindowFilterTest, TreatsAnUnreadableSubroleLikeADialog) {
    EXPECT_TRUE(filter.isSwitchable(titled(std::nullopt, "Inbox")));
    EXPECT_FALSE(filter.isSwitchable(titled(std::nullopt, "")));
    auto small = titled(std::nullopt, "Inbox");
    small.frame = Rect{0, 0, 40, 40};
    EXPECT_FALSE(filter.isSwitchable(small));
}

TEST_F(WindowFilterTest, DropsEveryOtherSubroleWhateverTheTitle) {
    EXPECT_FALSE(filter.isSwitchable(titled("AXFloatingWindow", "Colours")));
    EXPECT_FALSE(filter.isSwitchable(titled("axstandardwindow", "Inbox")));
    EXPECT_FALSE(filter.isSwitchable(titled("", "Inbox")));
    auto minimized = titled("AXFloatingWindow", "Colours");
    minimized.isMinimized = true;
    EXPECT_FALSE(filter.isSwitchable(minimized));
}

TEST_F(WindowFilterTest, KeepsAStandardWindowWithoutATitle) {
    EXPECT_TRUE(filter.isSwitchable(titled("AXStandardWindow", "")));
}

TEST_F(WindowFilterTest, DropsAnUntitledDialogAlsoWhenItIsMinimized) {
    auto dialog = titled("AXDialog", " ");
    dialog.isMinimized = true;
    EXPECT_FALSE(filter.isSwitchable(dialog));
}

TEST_F(WindowFilterTest, DropsWindowsBelowTheMinimumSize) {
    EXPECT_TRUE(filter.isSwitchable(standard({0, 0, 48, 48})));
    EXPECT_FALSE(filter.isSwitchable(standard({0, 0, 48, 47.5})));
    EXPECT_FALSE(filter.isSwitchable(standard({0, 0, 47.9, 200})));
    auto minimized = standard({0, 0, 48, 47.5});
    minimized.isMinimized = true;
    EXPECT_TRUE(filter.isSwitchable(minimized));
}

TEST_F(WindowFilterTest, LetsAnUnknownOrEmptyFramePassWhenTheServerKnowsTheSize) {
    EXPECT_TRUE(filter.isSwitchable(standard({0, 0, 0, 0})));
    auto unknown = standard();
    unknown.frame = std::nullopt;
    EXPECT_TRUE(filter.isSwitchable(unknown));
}

TEST_F(WindowFilterTest, DropsOtherLayers) {
    metadata.layer = 3;
    EXPECT_FALSE(filter.isSwitchable(standard()));
    metadata.layer = -1;
    EXPECT_FALSE(filter.isSwitchable(standard()));
}

TEST_F(WindowFilterTest, DropsInvisibleWindows) {
    metadata.alpha = 0.05;
    EXPECT_FALSE(filter.isSwitchable(standard()));
    metadata.alpha = 0.06;
    EXPECT_TRUE(filter.isSwitchable(standard()));
}

TEST_F(WindowFilterTest, MinimizedWindowsSkipLayerOpacityAndSize) {
    metadata.layer = 3;
    metadata.alpha = 0;
    metadata.bounds = {0, 0, 10, 10};
    auto minimized = standard({0, 0, 10, 10});
    minimized.isMinimized = true;
    EXPECT_TRUE(filter.isSwitchable(minimized));
}

TEST_F(WindowFilterTest, AlsoTestsTheSizeThatTheServerKnows) {
    metadata.bounds = {0, 0, 47, 600};
    EXPECT_FALSE(filter.isSwitchable(standard()));
    metadata.bounds = {};
    EXPECT_TRUE(filter.isSwitchable(standard())) << "the window's own frame stands in";
    auto withoutAnySize = standard();
    withoutAnySize.frame = std::nullopt;
    EXPECT_FALSE(filter.isSwitchable(withoutAnySize));
}

TEST_F(WindowFilterTest, DoesNotTestWhatTheServerDoesNotList) {
    auto unlisted = standard();
    unlisted.metadata = nullptr;
    EXPECT_TRUE(filter.isSwitchable(unlisted));
    unlisted.frame = std::nullopt;
    EXPECT_TRUE(filter.isSwitchable(unlisted));
    unlisted.frame = Rect{0, 0, 20, 20};
    EXPECT_FALSE(filter.isSwitchable(unlisted)) << "the frame is tested before the listing";
}

TEST_F(WindowFilterTest, CountsOnlyTheNormalLayerAsApplicationWindows) {
    EXPECT_TRUE(filter.isApplicationWindow(metadata));
    metadata.layer = 25;
    EXPECT_FALSE(filter.isApplicationWindow(metadata));
}

}  // namespace
}  // namespace ferrowyn

#include "core/window_presentation.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/core/session_doubles.h"

namespace ferrowyn::WindowPresentation {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::Optional;

AppWindow window(bool isMinimized, bool isFullScreen, bool isOnActiveSpace) {
    AppWindow result = testWindow(1, "Inbox");
    result.isMinimized = isMinimized;
    result.isFullScreen = isFullScreen;
    result.isOnActiveSpace = isOnActiveSpace;
    return result;
}

TEST(WindowPresentation, TheFirstStateThatAppliesIsTheBadge) {
    const Badge minimised{"Minimised", "arrow.down.right.and.arrow.up.left", Tint::orange};
    const Badge fullScreen{"Full Screen", "arrow.up.left.and.arrow.down.right", Tint::blue};
    for (const TextTable* const texts : {&macTexts(), &linuxTexts()}) {
        EXPECT_THAT(badge(window(true, true, false), *texts), Optional(minimised));
        EXPECT_THAT(badge(window(true, false, false), *texts), Optional(minimised));
        EXPECT_THAT(badge(window(true, true, true), *texts), Optional(minimised));
        EXPECT_THAT(badge(window(false, true, false), *texts), Optional(fullScreen));
        EXPECT_THAT(badge(window(false, true, true), *texts), Optional(fullScreen));
        EXPECT_THAT(badge(window(false, false, false), *texts),
                    Optional(Badge{texts == &macTexts() ? "Other Space" : "Other Workspace", "rectangle.on.rectangle",
                                   Tint::purple}));
    }
}

TEST(WindowPresentation, AnOrdinaryWindowOnTheActiveSpaceHasNoBadge) {
    EXPECT_EQ(badge(window(false, false, true), macTexts()), std::nullopt);
}

TEST(WindowPresentation, FooterHintsStandInTheirOrder) {
    EXPECT_THAT(
        footerHints(SwitcherModifier::option, SwitcherLayout::list, macTexts()),
        ElementsAre(ShortcutHint{{"⌥⇥"}, "next"}, ShortcutHint{{"↑", "↓"}, "navigate"}, ShortcutHint{{"⏎"}, "switch"},
                    ShortcutHint{{"⌘D"}, "pin"}, ShortcutHint{{"esc"}, "cancel"}));
}

TEST(WindowPresentation, OnLinuxTheFooterNamesTheKeysOfAPcKeyboard) {
    EXPECT_THAT(footerHints(SwitcherModifier::option, SwitcherLayout::list, linuxTexts()),
                ElementsAre(ShortcutHint{{"Alt+Tab"}, "next"}, ShortcutHint{{"↑", "↓"}, "navigate"},
                            ShortcutHint{{"Return"}, "switch"}, ShortcutHint{{"Ctrl+D"}, "pin"},
                            ShortcutHint{{"Esc"}, "cancel"}));
}

TEST(WindowPresentation, OnlyTheGridNavigatesWithFourArrows) {
    const auto navigate = [](SwitcherLayout layout) {
        return footerHints(SwitcherModifier::option, layout, macTexts()).at(1);
    };
    EXPECT_EQ(navigate(SwitcherLayout::list), (ShortcutHint{{"↑", "↓"}, "navigate"}));
    EXPECT_EQ(navigate(SwitcherLayout::grouped), (ShortcutHint{{"↑", "↓"}, "navigate"}));
    EXPECT_EQ(navigate(SwitcherLayout::grid), (ShortcutHint{{"↑", "↓", "←", "→"}, "navigate"}));
}

TEST(WindowPresentation, TheFirstHintShowsTheTrigger) {
    const auto first = [](SwitcherModifier trigger, const TextTable& texts) {
        return footerHints(trigger, SwitcherLayout::list, texts).front().keys;
    };
    EXPECT_THAT(first(SwitcherModifier::control, macTexts()), ElementsAre("⌃⇥"));
    EXPECT_THAT(first(SwitcherModifier::command, macTexts()), ElementsAre("⌘⇥"));
    EXPECT_THAT(first(SwitcherModifier::option, linuxTexts()), ElementsAre("Alt+Tab"));
    EXPECT_THAT(first(SwitcherModifier::command, linuxTexts()), ElementsAre("Super+Tab"));
    EXPECT_THAT(first(SwitcherModifier::control, linuxTexts()), ElementsAre("Ctrl+Tab"));
}

TEST(WindowPresentation, OnAPcKeyboardControlPinsUnlessItIsTheTrigger) {
    const auto pin = [](SwitcherModifier trigger) {
        return footerHints(trigger, SwitcherLayout::list, linuxTexts()).at(3).keys;
    };
    EXPECT_THAT(pin(SwitcherModifier::option), ElementsAre("Ctrl+D"));
    EXPECT_THAT(pin(SwitcherModifier::command), ElementsAre("Ctrl+D"));
    EXPECT_THAT(pin(SwitcherModifier::control), ElementsAre("Super+D"));
}

TEST(WindowPresentation, AQueryWithoutMatchesIsNamed) {
    EXPECT_EQ(emptyState("xyz"),
              (EmptyState{"magnifyingglass", "No matches for “xyz”", "Press ⌫ to edit your search"}));
    // Blanks are a query too as far as the text goes.
    EXPECT_EQ(emptyState(" ").title, "No matches for “ ”");
}

TEST(WindowPresentation, AnEmptyInventoryWithoutQueryIsNamed) {
    EXPECT_EQ(emptyState(""), (EmptyState{"macwindow", "No open windows", ""}));
}

TEST(WindowPresentation, ThePermissionStateSaysWhatIsMissingAndWhatToDo) {
    EXPECT_EQ(permissionSymbol, "lock.shield.fill");
    EXPECT_EQ(macTexts().permissionTitle, "Accessibility access is required");
    EXPECT_EQ(macTexts().permissionExplanation, "Ferrowyn cannot list or focus other apps' windows without it.");
    EXPECT_EQ(macTexts().permissionButton, "Open System Settings");
}

TEST(WindowPresentation, OnLinuxThePermissionStateNamesBothThingsThatMayBeMissing) {
    EXPECT_EQ(linuxTexts().permissionTitle, "A window manager is required");
    EXPECT_THAT(linuxTexts().permissionExplanation, HasSubstr("Start a window manager or update the X server"));
    EXPECT_THAT(linuxTexts().permissionExplanation, HasSubstr("XInput 2.2"));
    EXPECT_THAT(linuxTexts().permissionExplanation, Not(HasSubstr("Accessibility")));
    EXPECT_EQ(linuxTexts().permissionButton, "Open Setup");
}

TEST(WindowPresentation, TheSearchLineInvitesToType) {
    EXPECT_EQ(searchSymbol, "magnifyingglass");
    EXPECT_EQ(searchPlaceholder, "Search windows by app or title");
}

TEST(WindowPresentation, TheFavouriteButtonIsDrawnForFavouritesAndTheSelectedRowOnly) {
    EXPECT_FALSE(showsFavouriteButton(false, false));
    EXPECT_TRUE(showsFavouriteButton(true, false));
    EXPECT_TRUE(showsFavouriteButton(false, true));
    EXPECT_TRUE(showsFavouriteButton(true, true));
}

TEST(WindowPresentation, TheFavouriteButtonSaysWhatAClickDoes) {
    EXPECT_EQ(favouriteSymbol(true), "star.fill");
    EXPECT_EQ(favouriteSymbol(false), "star");
    EXPECT_EQ(favouriteHelp(true), "Unpin this app");
    EXPECT_EQ(favouriteHelp(false), "Pin this app to the top");
    EXPECT_EQ(favouriteLabel(true), "Unpin app");
    EXPECT_EQ(favouriteLabel(false), "Pin app");
    EXPECT_EQ(favouriteAccessibilityText, "Favourite");
}

TEST(WindowPresentation, GroupHeadersCountTheirWindows) {
    EXPECT_EQ(groupCountText(3), "3");
    EXPECT_EQ(groupAccessibilityLabel(3), "3 windows");
}

TEST(WindowPresentation, EveryLayoutHasItsSymbol) {
    EXPECT_EQ(layoutSymbol(SwitcherLayout::list), "list.bullet");
    EXPECT_EQ(layoutSymbol(SwitcherLayout::grouped), "list.bullet.indent");
    EXPECT_EQ(layoutSymbol(SwitcherLayout::grid), "square.grid.3x2");
}

}  // namespace
}  // namespace ferrowyn::WindowPresentation

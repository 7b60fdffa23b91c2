#include <gmock/gmock.h>

#include <memory>

#include "core/geometry.h"
#include "platform/macos/cocoa.h"
#include "platform/macos/mac_menu.h"
#include "platform/macos/mac_status_item.h"
#include "tests/macos/objc/mac_test.h"
#include "tests/ui/status_menu_model.h"

namespace ferrowyn::test {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

NSStatusItem* shownItem() {
    return [NSStatusBar onlyItem];
}

class MacStatusItemTest : public MacTest {
protected:
    void show(const StatusMenu& menu) {
        item->setMenu(menu);
        item->setActionHandler([this](const MenuRow& row) { chosen.push_back(row); });
    }
    [[nodiscard]] static FerrowynMenuHeaderView* header() {
        return static_cast<FerrowynMenuHeaderView*>(shownItem().menu.itemArray.firstObject.view);
    }
    [[nodiscard]] static std::string colorOf(NSAttributedString* string) {
        return static_cast<NSColor*>([string.attributes objectForKey:NSForegroundColorAttributeName]).name;
    }
    [[nodiscard]] static NSFont* fontOf(NSAttributedString* string) {
        return [string.attributes objectForKey:NSFontAttributeName];
    }

    void TearDown() override {
        @autoreleasepool {
            item.reset();
            chosen.clear();
        }
        MacTest::TearDown();
    }

    std::unique_ptr<MacStatusItem> item = std::make_unique<MacStatusItem>();
    std::vector<MenuRow> chosen;
};

TEST_F(MacStatusItemTest, TheItemHasVariableLengthAndLeavesTheBarWithItsOwner) {
    ASSERT_NE(shownItem(), nil);
    EXPECT_EQ(shownItem().length, NSVariableStatusItemLength);
    item.reset();
    EXPECT_EQ([NSStatusBar itemCount], 0U);
}

TEST_F(MacStatusItemTest, TheButtonShowsATemplateSymbolWithItsWords) {
    item->setButton({.symbol = "exclamationmark.triangle",
                     .tooltip = "Ferrowyn — Accessibility access required",
                     .accessibilityLabel = "Ferrowyn"});
    NSStatusBarButton* const button = shownItem().button;
    EXPECT_EQ(text(button.image.symbolName), "exclamationmark.triangle");
    EXPECT_EQ(text(button.image.symbolDescription), "Ferrowyn");
    EXPECT_TRUE([button.image isTemplate]);
    EXPECT_EQ(text(button.toolTip), "Ferrowyn — Accessibility access required");
    EXPECT_EQ(text(button.accessibilityLabel), "Ferrowyn");
    item->setButton({.symbol = "macwindow.on.rectangle", .tooltip = "Ferrowyn", .accessibilityLabel = "Ferrowyn"});
    EXPECT_EQ(text(button.image.symbolName), "macwindow.on.rectangle");
    EXPECT_EQ(text(button.toolTip), "Ferrowyn");
}

TEST_F(MacStatusItemTest, EveryRowOfEveryStateIsShownAsItIsSaid) {
    for (const Health health : allHealths) {
        const StatusMenu menu = statusMenu(health);
        show(menu);
        NSMenu* const shown = shownItem().menu;
        EXPECT_FALSE(shown.autoenablesItems);
        EXPECT_NE(shown.delegate, nil);
        ASSERT_EQ(shown.itemArray.count, menu.size()) << nameOf(health);
        for (std::size_t index = 0; index < menu.size(); ++index) {
            const MenuRow& row = menu[index];
            NSMenuItem* const drawn = [shown.itemArray objectAtIndex:index];
            const auto where = std::string(nameOf(health)) + ": " + row.title;
            EXPECT_EQ(drawn.separatorItem != NO, row.kind == MenuRow::Kind::separator) << where;
            EXPECT_EQ(drawn.view != nil, row.kind == MenuRow::Kind::header) << where;
            if (row.kind != MenuRow::Kind::item) {
                continue;
            }
            EXPECT_EQ(text(drawn.title), row.title) << where;
            EXPECT_EQ(drawn.enabled != NO, row.isEnabled) << where;
            EXPECT_EQ(drawn.state, row.isChecked ? NSControlStateValueOn : NSControlStateValueOff) << where;
            EXPECT_EQ(text(drawn.keyEquivalent), row.keyEquivalent) << where;
            EXPECT_EQ(drawn.toolTip == nil ? "" : text(drawn.toolTip), row.tooltip) << where;
            EXPECT_EQ(drawn.representedObject == nil ? "" : text(drawn.representedObject), row.representedValue)
                << where;
            EXPECT_EQ(text(drawn.image.symbolName), row.symbol) << where;
            EXPECT_EQ(drawn.target != nil, row.action != MenuRow::Action::none) << where;
            EXPECT_EQ(drawn.action != nullptr, row.action != MenuRow::Action::none) << where;
        }
    }
}

TEST_F(MacStatusItemTest, TheRowsStandInTheirOrder) {
    show(statusMenu(Health::secureInput));
    EXPECT_THAT(shownRows(),
                ElementsAre("header", "-", "Waiting for the other app to release it", "-", "Open Switcher",
                            "9 windows tracked", "-", "LAYOUT", "List", "Grouped", "Grid", "-", "Launch at Login",
                            "Settings…", "Setup Guide…", "Update to 1.4.0…", "About Ferrowyn", "-", "Quit Ferrowyn"));
    EXPECT_FALSE(rowTitled("Waiting for the other app to release it").enabled);
}

TEST_F(MacStatusItemTest, SymbolsAreTemplatesOfThirteenPointsUnlessTheyAreTinted) {
    show(statusMenu(Health::accessRequired));
    NSImage* const plain = rowTitled("Quit Ferrowyn").image;
    EXPECT_TRUE([plain isTemplate]);
    EXPECT_EQ(plain.configuration.pointSize, 13);
    EXPECT_EQ(plain.configuration.weight, NSFontWeightRegular);
    EXPECT_EQ(plain.configuration.paletteColors, nil);
    NSImage* const repair = rowTitled("Grant Accessibility Access…").image;
    EXPECT_FALSE([repair isTemplate]);
    EXPECT_EQ(repair.configuration.pointSize, 13);
    EXPECT_EQ(repair.configuration.paletteColors.firstObject.name, "systemOrange");
    NSImage* const update = rowTitled("Update to 1.4.0…").image;
    EXPECT_FALSE([update isTemplate]);
    EXPECT_EQ(update.configuration.paletteColors.firstObject.name, "controlAccent");
}

TEST_F(MacStatusItemTest, TheShortcutStandsBehindItsTitleInTheTertiaryColour) {
    MenuRow row;
    row.title = "Open Switcher";
    row.titleSuffix = "⌥⇥";
    row.action = MenuRow::Action::showSwitcher;
    show({row});
    NSAttributedString* const title = rowTitled("Open Switcher").attributedTitle;
    EXPECT_EQ(text(title.string), "Open Switcher   ⌥⇥");
    EXPECT_EQ(colorOf(title), "label");
    EXPECT_TRUE(fontOf(title).isMenuFont);
    ASSERT_EQ(title.runs.count, 1U);
    EXPECT_EQ(text(title.runs.firstObject.string), "   ⌥⇥");
    EXPECT_EQ(colorOf(title.runs.firstObject), "tertiaryLabel");
    EXPECT_TRUE(fontOf(title.runs.firstObject).isMenuFont);
}

TEST_F(MacStatusItemTest, ASectionsTitleIsSmallPaleAndDisabled) {
    show(statusMenu(Health::ready));
    NSMenuItem* const title = rowTitled("LAYOUT");
    EXPECT_FALSE(title.enabled);
    EXPECT_EQ(title.action, nullptr);
    EXPECT_EQ(text(title.attributedTitle.string), "LAYOUT");
    EXPECT_EQ(fontOf(title.attributedTitle).pointSize, 10);
    EXPECT_EQ(colorOf(title.attributedTitle), "tertiaryLabel");
}

TEST_F(MacStatusItemTest, ChoosingARowHandsThatRowOver) {
    const StatusMenu menu = statusMenu(Health::repeatedTimeouts);
    show(menu);
    for (const MenuRow& row : menu) {
        if (row.kind != MenuRow::Kind::item) {
            continue;
        }
        chosen.clear();
        const bool wasSent = [shownItem().menu choose:rowTitled(row.title)];
        EXPECT_EQ(wasSent, row.isEnabled && row.action != MenuRow::Action::none) << row.title;
        EXPECT_THAT(chosen, wasSent ? testing::Matcher<std::vector<MenuRow>>(ElementsAre(row))
                                    : testing::Matcher<std::vector<MenuRow>>(IsEmpty()))
            << row.title;
    }
}

TEST_F(MacStatusItemTest, AMenuThatWasReplacedWhileItWasOpenStillDoesWhatItSays) {
    show(statusMenu(Health::repeatedTimeouts));
    NSMenu* const open = shownItem().menu;
    NSMenuItem* const retry = rowTitled("Re-enable Shortcut");
    item->setMenu(statusMenu(Health::ready));
    EXPECT_NE(shownItem().menu, open);
    EXPECT_TRUE([open choose:retry]);
    ASSERT_EQ(chosen.size(), 1U);
    EXPECT_EQ(chosen[0].action, MenuRow::Action::retryInput);
}

TEST_F(MacStatusItemTest, WhatARowDoesMayReplaceTheMenuAndTheHandler) {
    show(statusMenu(Health::ready));
    std::string layout;
    item->setActionHandler([&](const MenuRow& row) {
        item->setMenu({});
        item->setActionHandler(nullptr);
        layout = row.representedValue;
    });
    EXPECT_TRUE([shownItem().menu choose:rowTitled("Grouped")]);
    EXPECT_EQ(layout, "grouped");
    EXPECT_EQ(shownItem().menu.itemArray.count, 0U);
}

TEST_F(MacStatusItemTest, AMenuThatOutlivesItsOwnerDoesNothing) {
    show(statusMenu(Health::ready));
    NSMenu* const open = shownItem().menu;
    NSMenuItem* const quit = rowTitled("Quit Ferrowyn");
    FerrowynMenuHeaderView* const view = header();
    item.reset();
    EXPECT_FALSE([open choose:quit]);
    EXPECT_TRUE([view accessibilityPerformPress]);
    EXPECT_THAT(chosen, IsEmpty());
}

TEST_F(MacStatusItemTest, ATargetThatTheSystemStillHoldsForAChoiceCallsNobodyThatHasGone) {
    show(statusMenu(Health::ready));
    NSMenuItem* const row = rowTitled("Quit Ferrowyn");
    NSMenu* const menu = shownItem().menu;
    const id target = row.target;
    ASSERT_NE(target, nil);
    item.reset();
    [menu choose:row];
    EXPECT_THAT(chosen, IsEmpty());
}

TEST_F(MacStatusItemTest, ASymbolThatTheSystemDoesNotHaveLeavesTheRowWithoutOne) {
    MenuRow row;
    row.title = "Row";
    row.symbol = "no.such.symbol";
    MenuRow tinted = row;
    tinted.title = "Tinted";
    tinted.symbolTint = MenuTint::orange;
    show({row, tinted});
    EXPECT_EQ(rowTitled("Row").image, nil);
    EXPECT_EQ(rowTitled("Tinted").image, nil);
}

class MacMenuHeaderTest : public MacStatusItemTest {
protected:
    void SetUp() override {
        @autoreleasepool {
            show(statusMenu(Health::accessRequired));
        }
    }
    [[nodiscard]] static NSControl* part(NSUInteger index) {
        return static_cast<NSControl*>([header().subviews objectAtIndex:index]);
    }
    [[nodiscard]] static Rect frame(NSView* view) { return fromNSRect(view.frame); }
    static void expectHover(BOOL expected) { EXPECT_EQ(header().isHoveringGear, expected); }
};

TEST_F(MacMenuHeaderTest, ThePartsStandInTheirPlaces) {
    EXPECT_EQ(frame(header()), (Rect{0, 0, 268, 58}));
    EXPECT_EQ(header().autoresizingMask, NSViewWidthSizable);
    ASSERT_EQ(header().subviews.count, 3U);
    EXPECT_EQ(frame(part(0)), (Rect{14, 13, 32, 32}));
    // The gear begins at 228; the texts end 8 before it.
    EXPECT_EQ(frame(part(1)), (Rect{54, 26, 166, 17}));
    EXPECT_EQ(frame(part(2)), (Rect{54, 10, 166, 15}));
    auto* const icon = static_cast<NSImageView*>(part(0));
    EXPECT_EQ(icon.image, NSApplication.sharedApplication.applicationIconImage);
    EXPECT_EQ(icon.imageScaling, NSImageScaleProportionallyUpOrDown);
}

TEST_F(MacMenuHeaderTest, TheTextsSayHowTheProgramIsDoing) {
    auto* const title = static_cast<NSTextField*>(part(1));
    EXPECT_EQ(text(title.stringValue), "Ferrowyn");
    EXPECT_EQ(title.font.pointSize, 13);
    EXPECT_EQ(title.textColor.name, "label");
    auto* const subtitle = static_cast<NSTextField*>(part(2));
    EXPECT_EQ(text(subtitle.stringValue), "Accessibility access required");
    EXPECT_EQ(subtitle.font.pointSize, 11);
    EXPECT_EQ(subtitle.textColor.name, "systemOrange");
    EXPECT_EQ(subtitle.lineBreakMode, NSLineBreakByTruncatingTail);
    item->setMenu(statusMenu(Health::ready));
    EXPECT_EQ(static_cast<NSTextField*>(part(2)).textColor.name, "secondaryLabel");
}

TEST_F(MacMenuHeaderTest, TheTextsGiveWayWhenTheMenuIsNarrowAndGrowWithIt) {
    header().frame = NSMakeRect(0, 0, 300, 58);
    EXPECT_EQ(frame(part(1)), (Rect{54, 26, 198, 17}));
    header().frame = NSMakeRect(0, 0, 80, 58);
    EXPECT_EQ(frame(part(2)), (Rect{54, 10, 0, 15}));
}

TEST_F(MacMenuHeaderTest, OneTrackingAreaCoversTheViewWheneverTheyAreRefreshed) {
    [header() updateTrackingAreas];
    header().frame = NSMakeRect(0, 0, 300, 58);
    [header() updateTrackingAreas];
    ASSERT_EQ(header().trackingAreas.count, 1U);
    NSTrackingArea* const area = header().trackingAreas.firstObject;
    EXPECT_EQ(area.rect.size.width, 300);
    EXPECT_EQ(area.options, NSTrackingMouseEnteredAndExited | NSTrackingMouseMoved | NSTrackingActiveAlways);
    EXPECT_EQ(area.owner, header());
}

TEST_F(MacMenuHeaderTest, TheGearLightsUpUnderThePointer) {
    const auto draw = [] {
        fake_mac::fills().clear();
        [header() drawRect:header().bounds];
    };
    draw();
    ASSERT_EQ(fake_mac::fills().size(), 1U) << "the symbol alone";
    EXPECT_EQ(fake_mac::fills()[0].color, "gearshape");
    EXPECT_EQ(fake_mac::fills()[0].tint, "label") << "the menu may be dark";
    header().needsDisplay = NO;
    [header() mouseMoved:[NSEvent eventAt:NSMakePoint(241, 29)]];
    expectHover(YES);
    EXPECT_TRUE(header().needsDisplay);
    draw();
    ASSERT_EQ(fake_mac::fills().size(), 2U);
    const auto& glow = fake_mac::fills()[0];
    EXPECT_EQ(glow.color, "label");
    EXPECT_DOUBLE_EQ(glow.alpha, 0.1);
    EXPECT_EQ(glow.radius, 5);
    EXPECT_EQ(fromNSRect(glow.rect), (Rect{229, 17, 24, 24}));
    // The symbol is 16 × 14 here, in the middle of the gear's 26 × 26.
    EXPECT_EQ(fromNSRect(fake_mac::fills()[1].rect), (Rect{233, 22, 16, 14}));
    [header() mouseMoved:[NSEvent eventAt:NSMakePoint(227, 29)]];
    expectHover(NO);
    [header() mouseMoved:[NSEvent eventAt:NSMakePoint(229, 17)]];
    expectHover(YES);
    header().needsDisplay = NO;
    [header() mouseExited:[NSEvent eventAt:NSMakePoint(0, 0)]];
    expectHover(NO);
    EXPECT_TRUE(header().needsDisplay);
}

TEST_F(MacMenuHeaderTest, AClickOnTheGearClosesTheMenuAndOpensTheSettings) {
    [header() mouseUp:[NSEvent eventAt:NSMakePoint(100, 29)]];
    EXPECT_THAT(chosen, IsEmpty());
    EXPECT_FALSE(shownItem().menu.wasCancelled);
    [header() mouseUp:[NSEvent eventAt:NSMakePoint(241, 29)]];
    EXPECT_TRUE(shownItem().menu.wasCancelled);
    ASSERT_EQ(chosen.size(), 1U);
    EXPECT_EQ(chosen[0].action, MenuRow::Action::openSettings);
}

TEST_F(MacMenuHeaderTest, AssistiveProgramsPressItAsAButton) {
    EXPECT_TRUE([header() isAccessibilityElement]);
    EXPECT_EQ(text([header() accessibilityRole]), text(NSAccessibilityButtonRole));
    EXPECT_EQ(text([header() accessibilityLabel]), "Settings");
    EXPECT_TRUE([header() accessibilityPerformPress]);
    EXPECT_TRUE(shownItem().menu.wasCancelled);
    ASSERT_EQ(chosen.size(), 1U);
    EXPECT_EQ(chosen[0].action, MenuRow::Action::openSettings);
}

TEST_F(MacMenuHeaderTest, ItIsMadeInCodeOnly) {
    // Outside a pool nothing could be said of what an exception leaves behind; the view itself goes.
    std::string reason;
    @autoreleasepool {
        try {
            static_cast<void>([[FerrowynMenuHeaderView alloc] initWithCoder:[[NSCoder alloc] init]]);
        } catch (const std::exception& error) {
            reason = error.what();
        }
    }
    EXPECT_EQ(reason, "NSInternalInconsistencyException: MenuHeaderView is created in code only");
}

}  // namespace

}  // namespace ferrowyn::test

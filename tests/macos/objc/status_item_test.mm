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
    /// "label, menu font 13" and so on.
    [[nodiscard]] static std::string looksOf(NSAttributedString* string) {
        NSColor* const color = [string.attributes objectForKey:NSForegroundColorAttributeName];
        NSFont* const font = [string.attributes objectForKey:NSFontAttributeName];
        return color.name + (font.isMenuFont ? ", menu font " : ", font ") +
               std::to_string(static_cast<int>(font.pointSize));
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
    EXPECT_TRUE(fake_mac::appKit().statusItems.empty());
}

TEST_F(MacStatusItemTest, TheButtonShowsATemplateSymbolWithItsWords) {
    for (const StatusButton& shown :
         {StatusButton{.symbol = "exclamationmark.triangle", .tooltip = "Access required", .accessibilityLabel = "One"},
          StatusButton{.symbol = "macwindow.on.rectangle", .tooltip = "Ferrowyn", .accessibilityLabel = "Two"}}) {
        item->setButton(shown);
        NSStatusBarButton* const button = shownItem().button;
        EXPECT_EQ(text(button.image.symbolName), shown.symbol);
        EXPECT_EQ(text(button.image.symbolDescription), shown.accessibilityLabel);
        EXPECT_TRUE([button.image isTemplate]);
        EXPECT_EQ(text(button.toolTip), shown.tooltip);
        EXPECT_EQ(text(button.accessibilityLabel), shown.accessibilityLabel);
    }
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
            SCOPED_TRACE(std::string(nameOf(health)) + ": " + row.title);
            EXPECT_EQ(drawn.separatorItem != NO, row.kind == MenuRow::Kind::separator);
            EXPECT_EQ(drawn.view != nil, row.kind == MenuRow::Kind::header);
            if (row.kind != MenuRow::Kind::item) {
                continue;
            }
            EXPECT_EQ(text(drawn.title), row.title);
            EXPECT_EQ(drawn.enabled != NO, row.isEnabled);
            EXPECT_EQ(drawn.state, row.isChecked ? NSControlStateValueOn : NSControlStateValueOff);
            EXPECT_EQ(text(drawn.keyEquivalent), row.keyEquivalent);
            EXPECT_EQ(drawn.toolTip == nil ? "" : text(drawn.toolTip), row.tooltip);
            EXPECT_EQ(drawn.representedObject == nil ? "" : text(drawn.representedObject), row.representedValue);
            EXPECT_EQ(text(drawn.image.symbolName), row.symbol);
            EXPECT_EQ(drawn.target != nil, row.action != MenuRow::Action::none);
            EXPECT_EQ(drawn.action != nullptr, row.action != MenuRow::Action::none);
        }
    }
}

TEST_F(MacStatusItemTest, SymbolsAreTemplatesOfThirteenPointsUnlessTheyAreTintedOrMissing) {
    const auto row = [](const char* title, const char* symbol, MenuTint tint) {
        MenuRow made;
        made.title = title;
        made.symbol = symbol;
        made.symbolTint = tint;
        return made;
    };
    show({row("Plain", "power", MenuTint::label), row("Orange", "lock", MenuTint::orange),
          row("Accent", "lock", MenuTint::accent), row("None", "no.such.symbol", MenuTint::label),
          row("None, tinted", "no.such.symbol", MenuTint::orange)});
    const std::vector<std::pair<std::string, std::string>> table{
        {"Plain", ""}, {"Orange", "systemOrange"}, {"Accent", "controlAccent"}};
    for (const auto& [title, color] : table) {
        SCOPED_TRACE(title);
        NSImage* const image = rowTitled(title).image;
        EXPECT_EQ([image isTemplate] != NO, color.empty());
        EXPECT_EQ(image.configuration.pointSize, 13);
        EXPECT_EQ(image.configuration.weight, NSFontWeightRegular);
        NSColor* const first = image.configuration.paletteColors.firstObject;
        EXPECT_EQ(first == nil ? "" : first.name, color);
    }
    EXPECT_EQ(rowTitled("None").image, nil);
    EXPECT_EQ(rowTitled("None, tinted").image, nil);
}

TEST_F(MacStatusItemTest, TheShortcutStandsBehindItsTitleInTheTertiaryColour) {
    MenuRow row;
    row.title = "Open Switcher";
    row.titleSuffix = "⌥⇥";
    row.action = MenuRow::Action::showSwitcher;
    show({row});
    NSAttributedString* const title = rowTitled("Open Switcher").attributedTitle;
    EXPECT_EQ(text(title.string), "Open Switcher   ⌥⇥");
    EXPECT_EQ(looksOf(title), "label, menu font 0");
    ASSERT_EQ(title.runs.count, 1U);
    EXPECT_EQ(text(title.runs.firstObject.string), "   ⌥⇥");
    EXPECT_EQ(looksOf(title.runs.firstObject), "tertiaryLabel, menu font 0");
}

TEST_F(MacStatusItemTest, ASectionsTitleIsSmallPaleAndDisabled) {
    show(statusMenu(Health::ready));
    NSMenuItem* const title = rowTitled("LAYOUT");
    EXPECT_FALSE(title.enabled);
    EXPECT_EQ(title.action, nullptr);
    EXPECT_EQ(text(title.attributedTitle.string), "LAYOUT");
    EXPECT_EQ(looksOf(title.attributedTitle), "tertiaryLabel, font 10");
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
    for (const bool isTargetHeld : {true, false}) {
        item = std::make_unique<MacStatusItem>();
        show(statusMenu(Health::ready));
        NSMenu* const open = shownItem().menu;
        NSMenuItem* const quit = rowTitled("Quit Ferrowyn");
        FerrowynMenuHeaderView* const view = header();
        // The system may still hold the target for a choice.
        const id target = isTargetHeld ? quit.target : nil;
        item.reset();
        EXPECT_EQ([open choose:quit] != NO, target != nil);
        EXPECT_TRUE([view accessibilityPerformPress]);
        EXPECT_THAT(chosen, IsEmpty());
    }
}

class MacMenuHeaderTest : public MacStatusItemTest {
protected:
    void SetUp() override {
        @autoreleasepool {
            show(statusMenu(Health::accessRequired));
        }
    }
    template <typename Kind>
    [[nodiscard]] static Kind* part(NSUInteger index) {
        return static_cast<Kind*>([header().subviews objectAtIndex:index]);
    }
    [[nodiscard]] static Rect frame(NSView* view) { return fromNSRect(view.frame); }
    static NSEvent* pointerAt(double x, double y) { return [NSEvent eventAt:NSMakePoint(x, y)]; }
};

TEST_F(MacMenuHeaderTest, ThePartsStandInTheirPlacesAndGiveWayInANarrowMenu) {
    EXPECT_EQ(frame(header()), (Rect{0, 0, 268, 58}));
    EXPECT_EQ(header().autoresizingMask, NSViewWidthSizable);
    ASSERT_EQ(header().subviews.count, 3U);
    auto* const icon = part<NSImageView>(0);
    EXPECT_EQ(frame(icon), (Rect{14, 13, 32, 32}));
    EXPECT_EQ(icon.image, NSApplication.sharedApplication.applicationIconImage);
    EXPECT_EQ(icon.imageScaling, NSImageScaleProportionallyUpOrDown);
    // In the first, the gear begins at 228; the texts end 8 before it.
    for (const auto& [width, textWidth] : {std::pair{268, 166}, {300, 198}, {80, 0}}) {
        header().frame = NSMakeRect(0, 0, width, 58);
        EXPECT_EQ(frame(part<NSView>(1)), (Rect{54, 26, static_cast<double>(textWidth), 17}));
        EXPECT_EQ(frame(part<NSView>(2)), (Rect{54, 10, static_cast<double>(textWidth), 15}));
    }
}

TEST_F(MacMenuHeaderTest, TheTextsSayHowTheProgramIsDoing) {
    const auto shown = [](NSUInteger index) {
        auto* const field = part<NSTextField>(index);
        return text(field.stringValue) + ", " + field.textColor.name + " " +
               std::to_string(static_cast<int>(field.font.pointSize));
    };
    EXPECT_EQ(shown(1), "Ferrowyn, label 13");
    EXPECT_EQ(shown(2), "Accessibility access required, systemOrange 11");
    EXPECT_EQ(part<NSTextField>(2).lineBreakMode, NSLineBreakByTruncatingTail);
    item->setMenu(statusMenu(Health::ready));
    EXPECT_EQ(shown(2), "Ready, secondaryLabel 11");
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
    auto& fills = fake_mac::appKit().fills;
    const auto draw = [&] {
        fills.clear();
        [header() drawRect:header().bounds];
    };
    draw();
    ASSERT_EQ(fills.size(), 1U) << "the symbol alone";
    EXPECT_EQ(fills[0].color, "gearshape");
    EXPECT_EQ(fills[0].tint, "label") << "the menu may be dark";
    header().needsDisplay = NO;
    [header() mouseMoved:pointerAt(241, 29)];
    EXPECT_TRUE(header().isHoveringGear);
    EXPECT_TRUE(header().needsDisplay);
    draw();
    ASSERT_EQ(fills.size(), 2U);
    EXPECT_EQ(fills[0].color, "label");
    EXPECT_DOUBLE_EQ(fills[0].alpha, 0.1);
    EXPECT_EQ(fills[0].radius, 5);
    EXPECT_EQ(fromNSRect(fills[0].rect), (Rect{229, 17, 24, 24}));
    // The symbol is 16 × 14 here, in the middle of the gear's 26 × 26.
    EXPECT_EQ(fromNSRect(fills[1].rect), (Rect{233, 22, 16, 14}));
    [header() mouseMoved:pointerAt(227, 29)];
    EXPECT_FALSE(header().isHoveringGear);
    [header() mouseMoved:pointerAt(229, 17)];
    EXPECT_TRUE(header().isHoveringGear);
    header().needsDisplay = NO;
    [header() mouseExited:pointerAt(0, 0)];
    EXPECT_FALSE(header().isHoveringGear);
    EXPECT_TRUE(header().needsDisplay);
}

TEST_F(MacMenuHeaderTest, AClickOnTheGearOrAnAssistiveProgramOpensTheSettings) {
    [header() mouseUp:pointerAt(100, 29)];
    EXPECT_THAT(chosen, IsEmpty());
    EXPECT_FALSE(shownItem().menu.wasCancelled);
    EXPECT_TRUE([header() isAccessibilityElement]);
    EXPECT_EQ(text([header() accessibilityRole]), text(NSAccessibilityButtonRole));
    EXPECT_EQ(text([header() accessibilityLabel]), "Settings");
    for (const bool isClick : {true, false}) {
        show(statusMenu(Health::accessRequired));
        chosen.clear();
        if (isClick) {
            [header() mouseUp:pointerAt(241, 29)];
        } else {
            EXPECT_TRUE([header() accessibilityPerformPress]);
        }
        EXPECT_TRUE(shownItem().menu.wasCancelled);
        ASSERT_EQ(chosen.size(), 1U);
        EXPECT_EQ(chosen[0].action, MenuRow::Action::openSettings);
    }
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

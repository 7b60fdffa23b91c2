#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>
#include <string_view>
#include <tuple>
#include <vector>

#include "core/switcher_command.h"
#include "core/switcher_options.h"

namespace ferrowyn {
namespace {

using testing::ElementsAre;

TEST(SwitcherCommand, OnlyTheKeysOneToNineAreDigits) {
    const std::map<int, int> ordinals{{18, 1}, {19, 2}, {20, 3}, {21, 4}, {23, 5}, {22, 6}, {26, 7}, {28, 8}, {25, 9}};
    for (int keyCode = 0; keyCode < 256; ++keyCode) {
        const auto found = ordinals.find(keyCode);
        EXPECT_EQ(digitOrdinal(static_cast<std::uint16_t>(keyCode)),
                  found == ordinals.end() ? std::nullopt : std::optional(found->second))
            << keyCode;
    }
}

TEST(SwitcherCommand, IsComparedByCaseAndPayload) {
    EXPECT_EQ(SwitcherCommand(command::Invoke{.reverse = true}), SwitcherCommand(command::Invoke{.reverse = true}));
    EXPECT_NE(SwitcherCommand(command::Invoke{.reverse = true}), SwitcherCommand(command::Invoke{}));
    EXPECT_NE(SwitcherCommand(command::Move{1}), SwitcherCommand(command::MoveVertical{1}));
    EXPECT_NE(SwitcherCommand(command::Move{1}), SwitcherCommand(command::Move{-1}));
    EXPECT_EQ(SwitcherCommand(command::InsertText{"é"}), SwitcherCommand(command::InsertText{"é"}));
    EXPECT_NE(SwitcherCommand(command::Confirm{}), SwitcherCommand(command::Cancel{}));
    EXPECT_NE(SwitcherCommand(command::SelectIndex{1}), SwitcherCommand(command::SelectIndex{2}));
    EXPECT_NE(SwitcherCommand(command::MoveToEdge{true}), SwitcherCommand(command::MoveToEdge{false}));
}

TEST(SwitcherCommand, HasThirteenCasesInTheirOrder) {
    EXPECT_EQ(std::variant_size_v<SwitcherCommand>, 13U);
    EXPECT_EQ(SwitcherCommand(command::Invoke{}).index(), 0U);
    EXPECT_EQ(SwitcherCommand(command::InsertText{}).index(), 5U);
    EXPECT_EQ(SwitcherCommand(command::ModifierReleased{}).index(), 12U);
}

TEST(SwitcherModifier, HasItsRawValuesMasksSymbolsAndNames) {
    struct Expected {
        SwitcherModifier modifier;
        std::string_view raw;
        std::uint64_t mask;
        std::string_view symbol;
        std::string_view name;
    };
    const std::array expected{Expected{SwitcherModifier::option, "option", 0x80000, "⌥", "Option"},
                              Expected{SwitcherModifier::command, "command", 0x100000, "⌘", "Command"},
                              Expected{SwitcherModifier::control, "control", 0x40000, "⌃", "Control"}};
    ASSERT_EQ(allSwitcherModifiers.size(), expected.size());
    for (std::size_t i = 0; i < expected.size(); ++i) {
        const auto modifier = expected[i].modifier;
        EXPECT_EQ(allSwitcherModifiers[i], modifier);
        EXPECT_EQ(rawValue(modifier), expected[i].raw);
        EXPECT_EQ(switcherModifierFromRawValue(expected[i].raw), modifier);
        EXPECT_EQ(flagMask(modifier), expected[i].mask);
        EXPECT_EQ(symbol(modifier), expected[i].symbol);
        EXPECT_EQ(name(modifier), expected[i].name);
    }
}

TEST(SwitcherModifier, RawValuesAreComparedExactly) {
    for (const auto* const raw : {"Option", "OPTION", " option", "shift", ""}) {
        EXPECT_EQ(switcherModifierFromRawValue(raw), std::nullopt) << raw;
    }
}

TEST(SwitcherLayout, HasItsRawValuesTitlesAndColumns) {
    struct Expected {
        SwitcherLayout layout;
        std::string_view raw;
        std::string_view title;
        int columns;
    };
    const std::array expected{Expected{SwitcherLayout::list, "list", "List", 1},
                              Expected{SwitcherLayout::grouped, "grouped", "Grouped", 1},
                              Expected{SwitcherLayout::grid, "grid", "Grid", 5}};
    ASSERT_EQ(allSwitcherLayouts.size(), expected.size());
    for (std::size_t i = 0; i < expected.size(); ++i) {
        const auto layout = expected[i].layout;
        EXPECT_EQ(allSwitcherLayouts[i], layout);
        EXPECT_EQ(rawValue(layout), expected[i].raw);
        EXPECT_EQ(switcherLayoutFromRawValue(expected[i].raw), layout);
        EXPECT_EQ(title(layout, macUtilityTexts()), expected[i].title);
        EXPECT_EQ(columns(layout), expected[i].columns);
    }
    EXPECT_EQ(switcherLayoutFromRawValue("List"), std::nullopt);
    EXPECT_EQ(switcherLayoutFromRawValue(""), std::nullopt);
}

TEST(SwitcherLayout, CountsLinesRoundingUp) {
    for (const auto layout : allSwitcherLayouts) {
        EXPECT_EQ(lineCount(layout, 0), 0);
        EXPECT_EQ(lineCount(layout, -3), 0);
        EXPECT_EQ(lineCount(layout, 1), 1);
    }
    EXPECT_EQ(lineCount(SwitcherLayout::grid, 5), 1);
    EXPECT_EQ(lineCount(SwitcherLayout::grid, 6), 2);
    EXPECT_EQ(lineCount(SwitcherLayout::list, 6), 6);
    EXPECT_EQ(lineCount(SwitcherLayout::grouped, 6), 6);
}

TEST(SwitcherLayout, ShowsAThirdAsManyLinesOfCards) {
    EXPECT_EQ(visibleLineCount(SwitcherLayout::grid, 4), 2);
    EXPECT_EQ(visibleLineCount(SwitcherLayout::grid, 9), 3);
    EXPECT_EQ(visibleLineCount(SwitcherLayout::grid, 16), 6);
    EXPECT_EQ(visibleLineCount(SwitcherLayout::list, 9), 9);
    EXPECT_EQ(visibleLineCount(SwitcherLayout::grouped, 16), 16);
    for (const auto layout : allSwitcherLayouts) {
        EXPECT_EQ(visibleLineCount(layout, 0), 1);
        EXPECT_EQ(visibleLineCount(layout, -5), 1);
    }
}

TEST(SwitcherLayout, CyclesThroughAllLayouts) {
    EXPECT_EQ(nextLayout(SwitcherLayout::list), SwitcherLayout::grouped);
    EXPECT_EQ(nextLayout(SwitcherLayout::grouped), SwitcherLayout::grid);
    EXPECT_EQ(nextLayout(SwitcherLayout::grid), SwitcherLayout::list);
}

TEST(SettingsPaneTest, PanesHaveTheirOrderNamesAndSymbols) {
    std::vector<std::tuple<std::string_view, std::string_view, std::string_view>> panes;
    for (const auto pane : allSettingsPanes) {
        panes.emplace_back(rawValue(pane), title(pane, macUtilityTexts()), symbol(pane));
    }
    EXPECT_THAT(
        panes,
        ElementsAre(std::tuple("general", "General", "gearshape"), std::tuple("shortcut", "Shortcut", "keyboard"),
                    std::tuple("appearance", "Appearance", "paintbrush"), std::tuple("windows", "Windows", "macwindow"),
                    std::tuple("favourites", "Favourites", "star"), std::tuple("about", "About", "info.circle")));
}

TEST(SettingsPaneTest, PanesAreFoundByTheirExactNamesOnly) {
    for (const auto pane : allSettingsPanes) {
        EXPECT_EQ(settingsPaneFromRawValue(rawValue(pane)), pane);
    }
    EXPECT_EQ(settingsPaneFromRawValue("General"), std::nullopt);
    EXPECT_EQ(settingsPaneFromRawValue(""), std::nullopt);
}

}  // namespace
}  // namespace ferrowyn

#include "core/switcher_options.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string_view>
#include <tuple>
#include <vector>

namespace ferrowyn {
namespace {

using testing::ElementsAre;

TEST(SettingsPaneTest, PanesHaveTheirOrderNamesAndSymbols) {
    std::vector<std::tuple<std::string_view, std::string_view, std::string_view>> panes;
    for (const auto pane : allSettingsPanes) {
        panes.emplace_back(rawValue(pane), title(pane, macWindowTexts()), symbol(pane));
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

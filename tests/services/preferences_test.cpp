#include "services/preferences.h"

#include <cstdint>
#include <limits>

#include "platform/simulated/simulated_desktop.h"

namespace ferrowyn {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

class PreferencesTest : public testing::Test {
protected:
    SimulatedDesktop desktop;
    UserDefaults& defaults = desktop.userDefaults();
};

TEST_F(PreferencesTest, AFreshStoreReadsTheDefaults) {
    const Preferences preferences(defaults);
    EXPECT_EQ(preferences.modifier.get(), SwitcherModifier::option);
    EXPECT_TRUE(preferences.includeMinimized.get());
    EXPECT_TRUE(preferences.includeOtherSpaces.get());
    EXPECT_TRUE(preferences.showShortcutHints.get());
    EXPECT_TRUE(preferences.confirmOnModifierRelease.get());
    EXPECT_EQ(preferences.maximumVisibleRows.get(), 9);
    EXPECT_EQ(preferences.layout.get(), SwitcherLayout::list);
    EXPECT_TRUE(preferences.showActiveAppWindowsFirst.get());
    EXPECT_TRUE(preferences.favouritesFirst.get());
    EXPECT_TRUE(preferences.automaticUpdateChecks.get());
    EXPECT_THAT(desktop.storedValues(), IsEmpty());
}

TEST_F(PreferencesTest, RegistersADefaultForEachKey) {
    const Preferences preferences(defaults);
    EXPECT_EQ(defaults.value("switcher.modifier"), DefaultsValue(std::string("option")));
    for (const auto* key : {"switcher.includeMinimized", "switcher.includeOtherSpaces", "switcher.showShortcutHints",
                            "switcher.confirmOnModifierRelease", "switcher.activeAppFirst", "switcher.favouritesFirst",
                            "updates.automatic"}) {
        EXPECT_EQ(defaults.value(key), DefaultsValue(true)) << key;
    }
    EXPECT_EQ(defaults.value("switcher.maximumVisibleRows"), DefaultsValue(std::int64_t{9}));
    EXPECT_EQ(defaults.value("switcher.layout"), DefaultsValue(std::string("list")));
}

TEST_F(PreferencesTest, ReadsWhatIsStored) {
    defaults.set("switcher.modifier", std::string("control"));
    defaults.set("switcher.includeMinimized", false);
    defaults.set("switcher.includeOtherSpaces", false);
    defaults.set("switcher.showShortcutHints", false);
    defaults.set("switcher.confirmOnModifierRelease", false);
    defaults.set("switcher.maximumVisibleRows", std::int64_t{12});
    defaults.set("switcher.layout", std::string("grouped"));
    defaults.set("switcher.activeAppFirst", false);
    defaults.set("switcher.favouritesFirst", false);
    defaults.set("updates.automatic", false);
    const Preferences preferences(defaults);
    EXPECT_EQ(preferences.modifier.get(), SwitcherModifier::control);
    EXPECT_FALSE(preferences.includeMinimized.get());
    EXPECT_FALSE(preferences.includeOtherSpaces.get());
    EXPECT_FALSE(preferences.showShortcutHints.get());
    EXPECT_FALSE(preferences.confirmOnModifierRelease.get());
    EXPECT_EQ(preferences.maximumVisibleRows.get(), 12);
    EXPECT_EQ(preferences.layout.get(), SwitcherLayout::grouped);
    EXPECT_FALSE(preferences.showActiveAppWindowsFirst.get());
    EXPECT_FALSE(preferences.favouritesFirst.get());
    EXPECT_FALSE(preferences.automaticUpdateChecks.get());
}

TEST_F(PreferencesTest, ClampsTheRowLimitWhenReadingAndLeavesTheStoreAlone) {
    for (const auto& [stored, read] : {std::pair{2, 4}, {40, 16}, {4, 4}, {16, 16}, {-1, 4}}) {
        defaults.set("switcher.maximumVisibleRows", std::int64_t{stored});
        const Preferences preferences(defaults);
        EXPECT_EQ(preferences.maximumVisibleRows.get(), read);
        EXPECT_EQ(defaults.integer("switcher.maximumVisibleRows"), stored);
    }
}

TEST_F(PreferencesTest, ClampsWhateverNumberOrTextTheRowLimitIs) {
    const auto limitOf = [this](DefaultsValue stored) {
        defaults.set("switcher.maximumVisibleRows", std::move(stored));
        return Preferences(defaults).maximumVisibleRows.get();
    };
    using Limits = std::numeric_limits<double>;
    EXPECT_EQ(limitOf(7.9), 7);
    for (const auto& huge :
         std::vector<DefaultsValue>{1e300, Limits::infinity(), std::int64_t{5'000'000'000},
                                    std::numeric_limits<std::int64_t>::max(), "1000000000000000000000"}) {
        EXPECT_EQ(limitOf(huge), 16) << huge.index();
    }
    for (const auto& small : std::vector<DefaultsValue>{-1e300, -Limits::infinity(), Limits::quiet_NaN(), -7.5,
                                                        std::numeric_limits<std::int64_t>::min(), "twelve", ""}) {
        EXPECT_EQ(limitOf(small), 4) << small.index();
    }
}

TEST_F(PreferencesTest, AFlagThatIsStoredAsANumberIsSetUnlessItIsZero) {
    for (const auto& [stored, read] : std::vector<std::pair<DefaultsValue, bool>>{
             {1.0, true}, {0.0, false}, {std::int64_t{1}, true}, {std::int64_t{0}, false}, {"on", false}}) {
        defaults.set("switcher.includeMinimized", stored);
        EXPECT_EQ(Preferences(defaults).includeMinimized.get(), read) << stored.index();
    }
}

TEST_F(PreferencesTest, UnknownTextsReadAsTheFirstCase) {
    defaults.set("switcher.modifier", std::string("Command"));
    defaults.set("switcher.layout", std::string());
    const Preferences preferences(defaults);
    EXPECT_EQ(preferences.modifier.get(), SwitcherModifier::option);
    EXPECT_EQ(preferences.layout.get(), SwitcherLayout::list);
}

TEST_F(PreferencesTest, TellsSubscribersBeforeTheStoreIsWritten) {
    Preferences preferences(defaults);
    std::vector<SwitcherLayout> told;
    std::size_t storedWhenTold = 99;
    const auto subscription = preferences.layout.published().subscribe([&](SwitcherLayout layout) {
        told.push_back(layout);
        storedWhenTold = desktop.storedValues().size();
    });
    preferences.layout.set(SwitcherLayout::grid);
    EXPECT_THAT(told, ElementsAre(SwitcherLayout::list, SwitcherLayout::grid));
    EXPECT_EQ(storedWhenTold, 0U);
    EXPECT_THAT(desktop.storedValues(), ElementsAre(Pair("switcher.layout", DefaultsValue(std::string("grid")))));
}

TEST_F(PreferencesTest, StoresEachSettingUnderItsKey) {
    Preferences preferences(defaults);
    preferences.modifier.set(SwitcherModifier::command);
    preferences.includeMinimized.set(false);
    preferences.includeOtherSpaces.set(false);
    preferences.showShortcutHints.set(false);
    preferences.confirmOnModifierRelease.set(false);
    preferences.maximumVisibleRows.set(7);
    preferences.layout.set(SwitcherLayout::grouped);
    preferences.showActiveAppWindowsFirst.set(false);
    preferences.favouritesFirst.set(false);
    preferences.automaticUpdateChecks.set(false);
    EXPECT_THAT(desktop.storedValues(), ElementsAre(Pair("switcher.modifier", DefaultsValue(std::string("command"))),
                                                    Pair("switcher.includeMinimized", DefaultsValue(false)),
                                                    Pair("switcher.includeOtherSpaces", DefaultsValue(false)),
                                                    Pair("switcher.showShortcutHints", DefaultsValue(false)),
                                                    Pair("switcher.confirmOnModifierRelease", DefaultsValue(false)),
                                                    Pair("switcher.maximumVisibleRows", DefaultsValue(std::int64_t{7})),
                                                    Pair("switcher.layout", DefaultsValue(std::string("grouped"))),
                                                    Pair("switcher.activeAppFirst", DefaultsValue(false)),
                                                    Pair("switcher.favouritesFirst", DefaultsValue(false)),
                                                    Pair("updates.automatic", DefaultsValue(false))));
}

TEST_F(PreferencesTest, StoresAnUnchangedValueToo) {
    Preferences preferences(defaults);
    preferences.includeMinimized.set(true);
    preferences.includeMinimized.set(true);
    EXPECT_EQ(desktop.storedValues().size(), 2U);
}

TEST_F(PreferencesTest, DoesNotClampAnAssignment) {
    Preferences preferences(defaults);
    preferences.maximumVisibleRows.set(40);
    EXPECT_EQ(preferences.maximumVisibleRows.get(), 40);
}

TEST_F(PreferencesTest, HandsASessionItsSettings) {
    Preferences preferences(defaults);
    const auto settings = preferences.sessionSettings();
    preferences.layout.set(SwitcherLayout::grid);
    preferences.favouritesFirst.set(false);
    EXPECT_EQ(settings.layout.get(), SwitcherLayout::grid);
    EXPECT_FALSE(settings.favouritesFirst.get());
    EXPECT_TRUE(settings.includeMinimized.get());
}

}  // namespace
}  // namespace ferrowyn

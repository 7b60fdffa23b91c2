#include "tests/platform/contract/user_defaults_contract.h"

#include <gmock/gmock.h>

#include <limits>

namespace ferrowyn::contract {

using testing::ElementsAre;
using testing::Optional;

TEST_P(UserDefaultsContract, WhatWasNeverSetIsNothingOrTheTypesZero) {
    const auto& defaults = driver->defaults();
    EXPECT_EQ(defaults.value("none"), std::nullopt);
    EXPECT_EQ(defaults.string("none"), std::nullopt);
    EXPECT_EQ(defaults.stringArray("none"), std::nullopt);
    EXPECT_FALSE(defaults.boolean("none"));
    EXPECT_EQ(defaults.integer("none"), 0);
    EXPECT_EQ(defaults.real("none"), 0);
}

TEST_P(UserDefaultsContract, WhatIsRegisteredAnswersAndIsNotStored) {
    auto& defaults = driver->defaults();
    defaults.registerDefaults({{"switcher.layout", std::string("list")}, {"switcher.rows", std::int64_t{12}}});
    EXPECT_EQ(defaults.string("switcher.layout"), "list");
    EXPECT_EQ(defaults.integer("switcher.rows"), 12);
    EXPECT_FALSE(driver->isStored("switcher.layout"));
    defaults.set("switcher.layout", std::string("grid"));
    EXPECT_EQ(defaults.string("switcher.layout"), "grid");
    EXPECT_TRUE(driver->isStored("switcher.layout"));
    EXPECT_FALSE(driver->isStored("switcher.rows"));
    defaults.registerDefaults({{"switcher.layout", std::string("list")}});
    EXPECT_EQ(defaults.string("switcher.layout"), "grid") << "what is stored stands before what is registered";
}

TEST_P(UserDefaultsContract, EveryTypeComesBackAsItWas) {
    auto& defaults = driver->defaults();
    const std::map<std::string, DefaultsValue> values{
        {"true", true},
        {"false", false},
        {"one", std::int64_t{1}},
        {"least", std::numeric_limits<std::int64_t>::min()},
        {"most", std::numeric_limits<std::int64_t>::max()},
        {"real", 0.12},
        {"text", std::string("Große Post — \"東京\"\n= 🦀 ")},
        {"empty text", std::string()},
        {"list", std::vector<std::string>{"com.example.one", "", "two, three"}},
        {"empty list", std::vector<std::string>{}},
    };
    for (const auto& [key, value] : values) {
        defaults.set("types." + key, value);
    }
    for (const auto& [key, value] : values) {
        EXPECT_EQ(defaults.value("types." + key), value) << key;
        EXPECT_TRUE(driver->isStored("types." + key)) << key;
    }
    EXPECT_THAT(defaults.stringArray("types.list"), Optional(ElementsAre("com.example.one", "", "two, three")));
    EXPECT_EQ(defaults.real("types.real"), 0.12);
    EXPECT_TRUE(defaults.boolean("types.true"));
}

TEST_P(UserDefaultsContract, TheLastValueCountsWhateverItsType) {
    auto& defaults = driver->defaults();
    defaults.set("key", true);
    defaults.set("key", std::int64_t{7});
    defaults.set("key", std::string("seven"));
    EXPECT_EQ(defaults.value("key"), DefaultsValue(std::string("seven")));
    EXPECT_FALSE(defaults.boolean("key"));
    EXPECT_EQ(defaults.stringArray("key"), std::nullopt);
}

}  // namespace ferrowyn::contract

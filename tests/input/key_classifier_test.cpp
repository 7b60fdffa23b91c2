#include "input/key_classifier.h"

#include <array>
#include <cstdint>
#include <map>
#include <optional>
#include <vector>

#include "tests/input/tap_doubles.h"

namespace ferrowyn {
namespace {

using Type = TapEvent::Type;
using ::testing::Eq;

constexpr std::uint64_t shift = 0x20000;
constexpr std::uint64_t control = 0x40000;
constexpr std::uint64_t option = 0x80000;
constexpr std::uint64_t commandFlag = 0x100000;
/// Caps lock, a device-dependent bit and the coalescing bit: real events carry such bits, and they mean nothing here.
constexpr std::uint64_t noise = 0x10000 | 0x100 | 0x2;

const KeyDecision pass{};
const KeyDecision silentSwallow{KeyDecision::Kind::swallow, std::nullopt};

KeyDecision sends(SwitcherCommand command) {
    return {KeyDecision::Kind::swallow, std::move(command)};
}

/// The rules as a table: the first line that fits an event says how it is classified.
struct Rule {
    enum class Held { any, yes };
    enum class Seen { any, hidden, visible };

    /// Empty for every key.
    std::vector<int> keys;
    /// At least one of these flags must be down; 0 asks for none.
    std::uint64_t anyOf = 0;
    /// None of these may be down.
    std::uint64_t noneOf = 0;
    Held trigger = Held::any;
    Seen switcher = Seen::any;
    /// The line counts for this trigger alone; 0 for each.
    std::uint64_t onlyForTrigger = 0;
    KeyDecision decision;
};

const std::vector<Rule>& rules() {
    using Held = Rule::Held;
    using Seen = Rule::Seen;
    using namespace command;
    static const std::vector<Rule> table = {
        {{48}, shift, 0, Held::yes, Seen::any, 0, sends(Invoke{true})},
        {{48}, 0, shift, Held::yes, Seen::any, 0, sends(Invoke{false})},
        {{50}, shift, 0, Held::yes, Seen::any, commandFlag, sends(Invoke{true})},
        {{50}, 0, shift, Held::yes, Seen::any, commandFlag, sends(Invoke{false})},
        {{}, 0, 0, Held::any, Seen::hidden, 0, pass},
        {{36, 76}, 0, 0, Held::any, Seen::visible, 0, sends(Confirm{})},
        {{53}, 0, 0, Held::any, Seen::visible, 0, sends(Cancel{})},
        {{115}, 0, 0, Held::any, Seen::visible, 0, sends(MoveToEdge{true})},
        {{119}, 0, 0, Held::any, Seen::visible, 0, sends(MoveToEdge{false})},
        {{116}, 0, 0, Held::any, Seen::visible, 0, sends(MoveVertical{-4})},
        {{121}, 0, 0, Held::any, Seen::visible, 0, sends(MoveVertical{4})},
        {{123}, 0, 0, Held::any, Seen::visible, 0, sends(Move{-1})},
        {{124}, 0, 0, Held::any, Seen::visible, 0, sends(Move{1})},
        {{126}, 0, 0, Held::any, Seen::visible, 0, sends(MoveVertical{-1})},
        {{125}, 0, 0, Held::any, Seen::visible, 0, sends(MoveVertical{1})},
        {{48}, shift, 0, Held::any, Seen::visible, 0, sends(Move{-1})},
        {{48}, 0, shift, Held::any, Seen::visible, 0, sends(Move{1})},
        {{2}, commandFlag, 0, Held::any, Seen::visible, 0, sends(ToggleFavourite{})},
        {{37}, commandFlag, 0, Held::any, Seen::visible, 0, sends(ToggleLayout{})},
        {{51}, commandFlag | option, 0, Held::any, Seen::visible, 0, sends(ClearQuery{})},
        {{51}, 0, commandFlag | option, Held::any, Seen::visible, 0, sends(DeleteBackward{})},
        {{18}, commandFlag, 0, Held::any, Seen::visible, 0, sends(SelectIndex{1})},
        {{19}, commandFlag, 0, Held::any, Seen::visible, 0, sends(SelectIndex{2})},
        {{20}, commandFlag, 0, Held::any, Seen::visible, 0, sends(SelectIndex{3})},
        {{21}, commandFlag, 0, Held::any, Seen::visible, 0, sends(SelectIndex{4})},
        {{23}, commandFlag, 0, Held::any, Seen::visible, 0, sends(SelectIndex{5})},
        {{22}, commandFlag, 0, Held::any, Seen::visible, 0, sends(SelectIndex{6})},
        {{26}, commandFlag, 0, Held::any, Seen::visible, 0, sends(SelectIndex{7})},
        {{28}, commandFlag, 0, Held::any, Seen::visible, 0, sends(SelectIndex{8})},
        {{25}, commandFlag, 0, Held::any, Seen::visible, 0, sends(SelectIndex{9})},
        {{18}, 0, 0, Held::yes, Seen::visible, 0, sends(SelectIndex{1})},
        {{19}, 0, 0, Held::yes, Seen::visible, 0, sends(SelectIndex{2})},
        {{20}, 0, 0, Held::yes, Seen::visible, 0, sends(SelectIndex{3})},
        {{21}, 0, 0, Held::yes, Seen::visible, 0, sends(SelectIndex{4})},
        {{23}, 0, 0, Held::yes, Seen::visible, 0, sends(SelectIndex{5})},
        {{22}, 0, 0, Held::yes, Seen::visible, 0, sends(SelectIndex{6})},
        {{26}, 0, 0, Held::yes, Seen::visible, 0, sends(SelectIndex{7})},
        {{28}, 0, 0, Held::yes, Seen::visible, 0, sends(SelectIndex{8})},
        {{25}, 0, 0, Held::yes, Seen::visible, 0, sends(SelectIndex{9})},
        {{}, control, 0, Held::any, Seen::visible, 0, silentSwallow},
        // What is left types text: its own, or the one without Option and Command.
        {{}, commandFlag | option, shift, Held::any, Seen::visible, 0, sends(InsertText{"plain"})},
        {{}, commandFlag | option, 0, Held::any, Seen::visible, 0, sends(InsertText{"shifted"})},
        {{}, 0, 0, Held::any, Seen::visible, 0, sends(InsertText{"own"})},
    };
    return table;
}

bool fits(const Rule& rule, int key, std::uint64_t flags, std::uint64_t trigger, bool isVisible) {
    if (!rule.keys.empty() && std::find(rule.keys.begin(), rule.keys.end(), key) == rule.keys.end()) {
        return false;
    }
    const bool isSeen = rule.switcher == Rule::Seen::any || (rule.switcher == Rule::Seen::visible) == isVisible;
    const bool isHeld = rule.trigger == Rule::Held::any || (flags & trigger) == trigger;
    return isSeen && isHeld && (rule.anyOf == 0 || (flags & rule.anyOf) != 0) && (flags & rule.noneOf) == 0 &&
           (rule.onlyForTrigger == 0 || rule.onlyForTrigger == trigger);
}

KeyDecision expectedForKeyDown(int key, std::uint64_t flags, std::uint64_t trigger, bool isVisible) {
    for (const auto& rule : rules()) {
        if (fits(rule, key, flags, trigger, isVisible)) {
            return rule.decision;
        }
    }
    return pass;
}

/// Calls the body for every combination of the four modifiers, with and without bits that mean nothing, each trigger,
/// and each state of the switcher.
template <typename Body>
void forEachSituation(const Body& body) {
    for (unsigned combination = 0; combination < 32; ++combination) {
        const std::uint64_t flags = ((combination & 1U) != 0 ? shift : 0) | ((combination & 2U) != 0 ? control : 0) |
                                    ((combination & 4U) != 0 ? option : 0) |
                                    ((combination & 8U) != 0 ? commandFlag : 0) |
                                    ((combination & 16U) != 0 ? noise : 0);
        for (const std::uint64_t trigger : {option, commandFlag, control}) {
            for (const bool isVisible : {false, true}) {
                for (const bool isHolding : {false, true}) {
                    body(flags, TapState::Snapshot{trigger, isVisible, isHolding});
                }
            }
        }
    }
}

std::string describe(int key, std::uint64_t flags, const TapState::Snapshot& state) {
    return "key " + std::to_string(key) + " flags " + std::to_string(flags) + " trigger " +
           std::to_string(state.modifierFlag) + (state.isSwitcherVisible ? " visible" : " hidden") +
           (state.isHoldModeActive ? " holding" : "");
}

TEST(KeyClassifierTest, DecidesEveryKeyPressAsTheTableOfRulesSays) {
    int count = 0;
    forEachSituation([&](std::uint64_t flags, const TapState::Snapshot& state) {
        for (int key = 0; key < 128; ++key) {
            ++count;
            const StubTapEvent event(Type::keyDown, static_cast<std::uint16_t>(key), flags);
            ASSERT_EQ(classify(event, state),
                      expectedForKeyDown(key, flags, state.modifierFlag, state.isSwitcherVisible))
                << describe(key, flags, state);
        }
    });
    EXPECT_EQ(count, 128 * 32 * 3 * 2 * 2);
}

TEST(KeyClassifierTest, SwallowsEveryReleaseWhileVisibleAndNoneWhileHidden) {
    forEachSituation([&](std::uint64_t flags, const TapState::Snapshot& state) {
        for (int key = 0; key < 128; ++key) {
            const StubTapEvent event(Type::keyUp, static_cast<std::uint16_t>(key), flags);
            ASSERT_EQ(classify(event, state), state.isSwitcherVisible ? silentSwallow : pass)
                << describe(key, flags, state);
        }
    });
}

TEST(KeyClassifierTest, NeverSwallowsAModifierAndReportsTheTriggersReleaseInHoldModeOnly) {
    const KeyDecision released{KeyDecision::Kind::passAndSend, command::ModifierReleased{}};
    int releases = 0;
    forEachSituation([&](std::uint64_t flags, const TapState::Snapshot& state) {
        const StubTapEvent event(Type::flagsChanged, 0, flags);
        const bool isRelease = state.isSwitcherVisible && state.isHoldModeActive && (flags & state.modifierFlag) == 0;
        releases += isRelease ? 1 : 0;
        ASSERT_EQ(classify(event, state), isRelease ? released : pass) << describe(0, flags, state);
    });
    EXPECT_EQ(releases, 3 * 16);
}

TEST(KeyClassifierTest, PassesEventsOfOtherTypes) {
    const TapState::Snapshot visible{option, true, true};
    for (const Type type : {Type::disabledByTimeout, Type::disabledByUserInput, static_cast<Type>(14)}) {
        EXPECT_EQ(classify(StubTapEvent(type, 48, option), visible), pass);
    }
}

TEST(KeyClassifierTest, OpensWithTriggerAndTabInBothDirections) {
    const TapState::Snapshot hidden{option, false, false};
    EXPECT_EQ(classify(StubTapEvent(Type::keyDown, 48, option), hidden), sends(command::Invoke{false}));
    EXPECT_EQ(classify(StubTapEvent(Type::keyDown, 48, option | shift), hidden), sends(command::Invoke{true}));
}

TEST(KeyClassifierTest, OpensWithTheKeyAboveTabForTheCommandTriggerOnly) {
    EXPECT_EQ(classify(StubTapEvent(Type::keyDown, 50, commandFlag), {commandFlag, false, false}),
              sends(command::Invoke{false}));
    EXPECT_EQ(classify(StubTapEvent(Type::keyDown, 50, option), {option, false, false}), pass);
}

TEST(KeyClassifierTest, PassesTabWithoutTheTriggerWhileHidden) {
    EXPECT_EQ(classify(StubTapEvent(Type::keyDown, 48, 0), {option, false, false}), pass);
    EXPECT_EQ(classify(StubTapEvent(Type::keyDown, 48, shift | control), {option, false, false}), pass);
}

TEST(KeyClassifierTest, TypesPlainCharactersWithAndWithoutOption) {
    const TapState::Snapshot visible{option, true, true};
    StubTapEvent bareA(Type::keyDown, 0, 0);
    bareA.ownText = u"a";
    EXPECT_EQ(classify(bareA, visible), sends(command::InsertText{"a"}));
    StubTapEvent optionA(Type::keyDown, 0, option);
    optionA.ownText = u"å";
    optionA.plainText = u"a";
    EXPECT_EQ(classify(optionA, visible), sends(command::InsertText{"a"}));
    EXPECT_EQ(classify(StubTapEvent(Type::keyDown, 0, control), visible), silentSwallow);
}

TEST(KeyClassifierTest, SelectsRowsByDigitButTypesTheZero) {
    const TapState::Snapshot visible{option, true, true};
    EXPECT_EQ(classify(StubTapEvent(Type::keyDown, 20, commandFlag), visible), sends(command::SelectIndex{3}));
    EXPECT_EQ(classify(StubTapEvent(Type::keyDown, 20, option), visible), sends(command::SelectIndex{3}));
    StubTapEvent zero(Type::keyDown, 29, option);
    zero.plainText = u"0";
    EXPECT_EQ(classify(zero, visible), sends(command::InsertText{"0"}));
}

TEST(KeyClassifierTest, ReportsTheReleaseOfTheTriggerInHoldModeOnly) {
    const StubTapEvent released(Type::flagsChanged, 58, 0);
    EXPECT_EQ(classify(released, {option, true, true}),
              (KeyDecision{KeyDecision::Kind::passAndSend, command::ModifierReleased{}}));
    EXPECT_EQ(classify(released, {option, true, false}), pass);
    EXPECT_EQ(classify(StubTapEvent(Type::flagsChanged, 56, option | shift), {option, true, true}), pass);
}

TEST(KeyClassifierTest, SwallowsAKeyWithoutTextSilently) {
    StubTapEvent functionKey(Type::keyDown, 122, 0);
    functionKey.ownText = u"";
    EXPECT_EQ(classify(functionKey, {option, true, true}), silentSwallow);
    EXPECT_EQ(classify(functionKey, {option, false, false}), pass);
}

TEST(KeyClassifierTest, KeysWithoutAnAnsiCodeTypeText) {
    StubTapEvent key(Type::keyDown, 200, 0);
    key.ownText = u"é";
    EXPECT_EQ(classify(key, {option, true, true}), sends(command::InsertText{"é"}));
}

TEST(TypedTextTest, AsksWithShiftAloneWhenAnotherModifierIsDown) {
    EXPECT_EQ(typedText(StubTapEvent(Type::keyDown, 0, 0)), "own");
    EXPECT_EQ(typedText(StubTapEvent(Type::keyDown, 0, shift)), "own");
    EXPECT_EQ(typedText(StubTapEvent(Type::keyDown, 0, option)), "plain");
    EXPECT_EQ(typedText(StubTapEvent(Type::keyDown, 0, option | shift | noise)), "shifted");
    EXPECT_EQ(typedText(StubTapEvent(Type::keyDown, 0, control)), "plain");
    EXPECT_EQ(typedText(StubTapEvent(Type::keyDown, 0, commandFlag | shift)), "shifted");
}

TEST(TypedTextTest, IsUtf8OfAllUnits) {
    StubTapEvent event(Type::keyDown, 0, 0);
    event.ownText = u"ß\U0001F600";
    EXPECT_EQ(typedText(event), "ß\U0001F600");
    event.ownText = {u'a', static_cast<char16_t>(0xD800)};
    EXPECT_EQ(typedText(event), "a\uFFFD");
}

TEST(TypedTextTest, IsNothingForControlAndFormatCharacters) {
    StubTapEvent event(Type::keyDown, 0, 0);
    for (const std::u16string& text :
         {std::u16string(u""), std::u16string(1, u'\0'), std::u16string(u"\x1b"), std::u16string(u"a\r"),
          std::u16string(u"\x7f"), std::u16string(1, static_cast<char16_t>(0x85)), std::u16string(u"\u200d")}) {
        event.ownText = text;
        EXPECT_EQ(typedText(event), std::nullopt) << "of " << text.size() << " units";
    }
}

}  // namespace
}  // namespace ferrowyn

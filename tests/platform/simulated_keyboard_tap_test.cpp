#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/simulated/simulated_desktop.h"

namespace ferrowyn {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class SimulatedKeyboardTapTest : public ::testing::Test {
protected:
    SimulatedDesktop desktop;
    KeyboardTaps& taps = desktop.platform().keyboardTaps;
    std::vector<TapEvent::Type> seen;
    TapVerdict verdict;
    bool wasEnabledWhenTold = true;

    [[nodiscard]] std::unique_ptr<KeyboardTap> startTap() {
        auto started = taps.start(SwitcherModifier::option, [this](const TapEvent& event) {
            seen.push_back(event.type());
            wasEnabledWhenTold = desktop.tapIsEnabled();
            return verdict;
        });
        return std::move(started.tap);
    }
};

TEST_F(SimulatedKeyboardTapTest, KeysReachOnlyATapThatIsInstalledAndEnabled) {
    EXPECT_TRUE(desktop.keyDown({.keyCode = 48})) << "no tap, so the application gets it";
    const auto tap = startTap();
    EXPECT_TRUE(desktop.tapIsInstalled());
    EXPECT_TRUE(desktop.tapIsEnabled());
    verdict.isSwallowed = true;
    EXPECT_FALSE(desktop.keyDown({.keyCode = 48}));
    verdict.isSwallowed = false;
    EXPECT_TRUE(desktop.keyUp({.keyCode = 48}));
    EXPECT_TRUE(desktop.flagsChanged(0));
    EXPECT_THAT(seen, ElementsAre(TapEvent::Type::keyDown, TapEvent::Type::keyUp, TapEvent::Type::flagsChanged));
    tap->setEnabled(false);
    desktop.keyDown({.keyCode = 48});
    EXPECT_EQ(seen.size(), 3U);
}

TEST_F(SimulatedKeyboardTapTest, ADisabledTapIsToldAfterwards) {
    const auto tap = startTap();
    desktop.disableTapByTimeout();
    EXPECT_FALSE(wasEnabledWhenTold);
    tap->setEnabled(true);
    desktop.disableTapByUserInput();
    EXPECT_THAT(seen, ElementsAre(TapEvent::Type::disabledByTimeout, TapEvent::Type::disabledByUserInput));
    tap->setEnabled(true);
    desktop.disableTapSilently();
    EXPECT_FALSE(tap->isEnabled());
    EXPECT_EQ(seen.size(), 2U);
}

TEST_F(SimulatedKeyboardTapTest, KnowsItsTriggerAndItsSessionUntilItIsGone) {
    auto tap = startTap();
    EXPECT_EQ(desktop.tapTrigger(), SwitcherModifier::option);
    tap->setTrigger(SwitcherModifier::control);
    EXPECT_EQ(desktop.tapTrigger(), SwitcherModifier::control);
    tap->openSession(TapSession{2});
    tap->closeSession(TapSession{1});
    EXPECT_TRUE(desktop.tapSessionIsOpen()) << "another session has ended";
    tap->closeSession(TapSession{2});
    EXPECT_FALSE(desktop.tapSessionIsOpen());
    tap.reset();
    EXPECT_FALSE(desktop.tapIsInstalled());
    EXPECT_FALSE(desktop.tapIsEnabled());
    EXPECT_EQ(desktop.tapTrigger(), std::nullopt);
    tap = startTap();
    EXPECT_TRUE(desktop.tapIsInstalled());
    EXPECT_EQ(desktop.tapStartCount(), 2);
}

TEST_F(SimulatedKeyboardTapTest, AStartIsRefusedWithTheWordsOfTheTestUntilItIsAllowed) {
    desktop.refuseKeyboardTap("no");
    const auto refused = taps.start(SwitcherModifier::option, [](const TapEvent&) { return TapVerdict{}; });
    EXPECT_EQ(refused.tap, nullptr);
    EXPECT_EQ(refused.refusal, "no");
    EXPECT_FALSE(desktop.tapIsInstalled());
    EXPECT_EQ(desktop.tapStartCount(), 0);
    desktop.allowKeyboardTap();
    EXPECT_NE(startTap(), nullptr);
}

TEST_F(SimulatedKeyboardTapTest, KeysTypeTheirTextWithAndWithoutFlags) {
    std::vector<std::u16string> texts;
    const auto started = taps.start(SwitcherModifier::option, [&](const TapEvent& event) {
        texts = {event.text(std::nullopt), event.text(0)};
        EXPECT_EQ(event.flags(), event_flags::option);
        EXPECT_EQ(event.keyCode(), 0);
        return TapVerdict{.isSwallowed = true, .requestedSession = TapSession{1}};
    });
    desktop.keyDown({.keyCode = 0, .flags = event_flags::option, .text = u"å", .textWithReducedFlags = u"a"});
    EXPECT_THAT(texts, ElementsAre(u"å", u"a"));
    EXPECT_EQ(desktop.lastTapVerdict(), (TapVerdict{.isSwallowed = true, .requestedSession = TapSession{1}}));
}

}  // namespace
}  // namespace ferrowyn

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/x11/adapter/tap_keyboard_fixture.h"

namespace ferrowyn::x11test {
namespace {

using testing::Contains;
using testing::Not;

TEST_F(TapKeyboardTest, PhysicalKeysAreTheSameInEveryLayoutAndTextFollowsTheLayout) {
    struct Case {
        const char* layout;
        const char* variant;
        std::u16string text;  // of the physical keys A and D
    };
    TapRig rig(server.display(), {});
    for (const auto& [layout, variant, text] : {Case{"us", "", u"ad"}, Case{"ru", "", u"фв"}, Case{"gr", "", u"αδ"},
                                                Case{"us", "dvorak", u"ae"}, Case{"fr", "", u"qd"}}) {
        setKeyboard({layout, variant});
        ASSERT_TRUE(rig.settle());
        startSession(rig);
        EXPECT_TRUE(typesInSession(rig, {key::a, key::d}, text)) << layout << ' ' << variant;
        input.tap(key::l);
        input.tap(key::digit1);
        input.tap(key::escape);
        ASSERT_TRUE(rig.waitForClosed(rig.opened()));
        input.release(key::leftAlt);
        std::vector<std::uint16_t> codes;
        for (const auto& event : rig.seen()) {
            if (event.type == TapEvent::Type::keyDown) {
                codes.push_back(event.keyCode);
                EXPECT_EQ(event.flags, event_flags::option);
            }
        }
        EXPECT_THAT(codes, testing::ElementsAre(aKey, dKey, lKey, oneKey, escapeKey)) << layout << ' ' << variant;
    }
    expectNothingLeft();
}

TEST_F(TapKeyboardTest, AHeldTabMovesOnAtTheRepeatRateAndStopsOnRelease) {
    ChildProcess rate({.command = {"xset", "-display", server.display(), "r", "rate", "200", "30"}});
    ASSERT_EQ(rate.waitForExit(), 0) << rate.output();
    TapRig rig(server.display(), {});
    input.press(key::leftAlt);
    input.press(key::tab);
    ASSERT_TRUE(rig.waitUntil([&] { return rig.moves() >= 5; }));
    input.release(key::tab);
    ASSERT_TRUE(rig.settle());
    const int moves = rig.moves();
    // Long enough for ten more.
    EXPECT_FALSE(rig.waitUntil([&] { return rig.moves() > moves; }, milliseconds{350}));
    input.release(key::leftAlt);
    EXPECT_TRUE(rig.waitForClosed(1));
    EXPECT_EQ(rig.opened(), 1);
    expectNothingLeft();
}

TEST_F(TapKeyboardTest, AHeldTabNeitherTypesIntoTheWindowNorOpensAgainAfterTheSession) {
    ChildProcess rate({.command = {"xset", "-display", server.display(), "r", "rate", "200", "30"}});
    ASSERT_EQ(rate.waitForExit(), 0) << rate.output();
    TapRig rig(server.display(), {});
    input.press(key::leftAlt);
    input.press(key::tab);
    ASSERT_TRUE(rig.waitForOpened(1));
    input.release(key::leftAlt);
    ASSERT_TRUE(rig.waitForClosed(1));
    ASSERT_TRUE(rig.settle());
    // Time for the first repeats.
    EXPECT_FALSE(rig.waitForOpenedWithin(2, milliseconds{500}));
    EXPECT_THAT(window.takeInput().keyPresses, Not(Contains(key::tab)));
    input.release(key::tab);
    ASSERT_TRUE(rig.settle());
    expectNothingLeft();
    // The next press is the user's own again.
    input.tap(key::tab);
    input.tap(key::a);
    EXPECT_TRUE(desktop.waitUntil([&, presses = std::vector<std::uint8_t>()]() mutable {
        const auto more = window.takeInput().keyPresses;
        presses.insert(presses.end(), more.begin(), more.end());
        return std::count(presses.begin(), presses.end(), key::tab) == 1 &&
               std::count(presses.begin(), presses.end(), key::a) == 1;
    }));
}

TEST_F(TapKeyboardTest, ATabPressedAgainAndHeldRepeatsAndLeavesNoRepeatsBehind) {
    ChildProcess rate({.command = {"xset", "-display", server.display(), "r", "rate", "200", "30"}});
    ASSERT_EQ(rate.waitForExit(), 0) << rate.output();
    TapRig rig(server.display(), {});
    input.press(key::leftAlt);
    input.tap(key::tab);
    ASSERT_TRUE(rig.waitForOpened(1));
    // No hand presses a key again before the tap has told the server of a release that it missed; XTEST could, and that
    // release would then be this press's.
    ASSERT_TRUE(rig.settle());
    input.press(key::tab);
    ASSERT_TRUE(rig.waitUntil([&] { return rig.moves() >= 5; }));
    input.release(key::leftAlt);
    ASSERT_TRUE(rig.waitForClosed(1));
    EXPECT_FALSE(rig.waitForOpenedWithin(2, milliseconds{500}));
    EXPECT_THAT(window.takeInput().keyPresses, Not(Contains(key::tab)));
    input.release(key::tab);
    ASSERT_TRUE(rig.settle());
    expectNothingLeft();
    toggle();
    EXPECT_TRUE(rig.waitForClosed(2));
}

TEST_F(TapKeyboardTest, APhysicalTabHeldBeyondTheSessionTypesNothing) {
    ChildProcess rate({.command = {"xset", "-display", server.display(), "r", "rate", "200", "30"}});
    ASSERT_EQ(rate.waitForExit(), 0) << rate.output();
    TapPhysicalKeyboard keyboard(server.display());
    ASSERT_TRUE(keyboard.isThere());
    TapRig rig(server.display(), {});
    // The Tab that opens comes through its own keyboard's grab, a second one through the master's.
    for (const int tabs : {1, 2}) {
        keyboard.press(key::leftAlt);
        keyboard.press(key::tab);
        ASSERT_TRUE(rig.waitForOpened(tabs));
        if (tabs == 2) {
            keyboard.release(key::tab);
            keyboard.press(key::tab);
        }
        const int moves = rig.moves();
        ASSERT_TRUE(rig.waitUntil([&] { return rig.moves() >= moves + 3; })) << "waited for repeats";
        keyboard.release(key::leftAlt);
        ASSERT_TRUE(rig.waitForClosed(tabs));
        EXPECT_FALSE(rig.waitForOpenedWithin(tabs + 1, milliseconds{500}));
        EXPECT_TRUE(desktop.waitForFreeKeyboard()) << "others can have the keyboard while Tab is still held";
        EXPECT_THAT(window.takeInput().keyPresses, Not(Contains(key::tab))) << tabs;
        keyboard.release(key::tab);
        ASSERT_TRUE(rig.settle());
        expectNothingLeft();
    }
    keyboard.tap(key::tab);
    keyboard.tap(key::a);
    EXPECT_TRUE(desktop.waitUntil([&, presses = std::vector<std::uint8_t>()]() mutable {
        const auto more = window.takeInput().keyPresses;
        presses.insert(presses.end(), more.begin(), more.end());
        return std::count(presses.begin(), presses.end(), key::tab) == 1 &&
               std::count(presses.begin(), presses.end(), key::a) == 1;
    }));
}

TEST_F(TapKeyboardTest, APhysicalKeyHeldSinceBeforeTheTriggerTypesNothingAndItsApplicationSeesItReleased) {
    ChildProcess rate({.command = {"xset", "-display", server.display(), "r", "rate", "200", "30"}});
    ASSERT_EQ(rate.waitForExit(), 0) << rate.output();
    TapPhysicalKeyboard keyboard(server.display());
    ASSERT_TRUE(keyboard.isThere());
    TapRig rig(server.display(), {});
    const auto heldKeyTyped = [&] {
        const auto& seen = rig.seenWhileWaiting();
        return std::ranges::any_of(
            seen, [](const auto& event) { return event.type == TapEvent::Type::keyDown && event.keyCode == aKey; });
    };
    keyboard.press(key::a);
    for (int repeat = 0; repeat < 3; ++repeat) {
        ASSERT_TRUE(window.waitForKeyPress(key::a)) << "waited for the key to repeat";
    }
    keyboard.press(key::leftAlt);
    keyboard.tap(key::tab);
    ASSERT_TRUE(rig.waitForOpened(1));
    (void)window.takeInput();
    // Long enough for ten repeats.
    EXPECT_FALSE(rig.waitUntil(heldKeyTyped, milliseconds{350}));
    keyboard.release(key::leftAlt);
    ASSERT_TRUE(rig.waitForClosed(1));
    ASSERT_TRUE(rig.settle());
    std::vector<std::uint8_t> releases;
    const auto presses = [&] {
        const auto arrived = window.takeInput();
        releases.insert(releases.end(), arrived.keyReleases.begin(), arrived.keyReleases.end());
        return arrived.keyPresses;
    };
    (void)presses();
    EXPECT_FALSE(desktop.waitUntil([&] { return !presses().empty(); }, milliseconds{350}))
        << "it goes on repeating after the session";
    // An application that has seen the press must see the release, or it would take the key for pressed for ever.
    keyboard.release(key::a);
    EXPECT_TRUE(desktop.waitUntil([&] {
        (void)presses();
        return !releases.empty();
    })) << "waited for the release";
    expectNothingLeft();
}

TEST_F(TapKeyboardTest, ATriggerThatIsStillHeldAfterEscapeOpensNoNewSession) {
    ChildProcess rate({.command = {"xset", "-display", server.display(), "r", "rate", "200", "30"}});
    ASSERT_EQ(rate.waitForExit(), 0) << rate.output();
    TapRig rig(server.display(), {});
    input.press(key::leftAlt);
    input.press(key::tab);
    ASSERT_TRUE(rig.waitForOpened(1));
    rig.close();
    ASSERT_TRUE(rig.waitForClosed(1));
    EXPECT_FALSE(rig.waitForOpenedWithin(2, milliseconds{500}));
    input.release(key::tab);
    input.tap(key::tab);
    EXPECT_TRUE(rig.waitForOpened(2));
    input.release(key::leftAlt);
    EXPECT_TRUE(rig.waitForClosed(2));
    expectNothingLeft();
}

}  // namespace
}  // namespace ferrowyn::x11test

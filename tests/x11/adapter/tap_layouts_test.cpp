#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/x11/adapter/tap_keyboard_fixture.h"

namespace ferrowyn::x11test {
namespace {

TEST_F(TapKeyboardTest, LocksDoNotHideTheTriggerAndNeverAppearInTheFlags) {
    TapRig rig(server.display(), {});
    int sessions = 0;
    for (const auto lock : {key::capsLock, key::numLock, key::scrollLock}) {
        input.tap(lock);
        toggle();
        ASSERT_TRUE(rig.waitForClosed(++sessions)) << int{lock};
    }
    for (const auto& event : rig.seen()) {
        EXPECT_THAT(event.flags, testing::AnyOf(0U, event_flags::option));
    }
    expectNothingLeft();
}

TEST_F(TapKeyboardTest, CapsLockDoesNotHideTheTriggerOnceItsKeyIsGone) {
    TapRig rig(server.display(), {});
    input.tap(key::capsLock);
    removeModifierKeys(rig, XCB_MAP_INDEX_LOCK);
    ASSERT_TRUE(isCapsLockOn());
    toggle();
    EXPECT_TRUE(rig.waitForClosed(1));
    expectNothingLeft();
}

TEST_F(TapKeyboardTest, OnlyTheLocksThatTheMapLosesAreGivenBack) {
    constexpr std::uint32_t alt = XCB_MOD_MASK_1;
    constexpr std::uint32_t numLock = XCB_MOD_MASK_2;
    TapRig rig(server.display(), {});
    ASSERT_TRUE(rig.settle());
    const auto keyboard = latestKeyboard();
    ASSERT_TRUE(keyboard);
    EXPECT_TRUE(isTabGrabbed(*keyboard, alt | numLock));

    removeModifierKeys(rig, XCB_MAP_INDEX_2);
    EXPECT_FALSE(isTabGrabbed(*keyboard, alt | numLock));
    EXPECT_TRUE(isTabGrabbed(*keyboard, alt));
    EXPECT_TRUE(isTabGrabbed(*keyboard, alt | XCB_MOD_MASK_LOCK));
    toggle();
    ASSERT_TRUE(rig.waitForClosed(1));

    setKeyboard({"us"});
    ASSERT_TRUE(rig.settle());
    EXPECT_TRUE(isTabGrabbed(*keyboard, alt | numLock));
    input.tap(key::numLock);
    toggle();
    EXPECT_TRUE(rig.waitForClosed(2));
    expectNothingLeft();
}

TEST_F(TapKeyboardTest, TextFollowsTheActiveGroupAndTheTriggerStillWorks) {
    TapRig rig(server.display(), {});
    setKeyboard({"-layout", "us,ru", "-option", "grp:caps_toggle"});
    ASSERT_TRUE(rig.settle());
    input.tap(key::capsLock);
    startSession(rig);
    EXPECT_TRUE(typesInSession(rig, {key::a}, u"ф"));
    input.release(key::leftAlt);
    EXPECT_TRUE(rig.waitForClosed(1));
    expectNothingLeft();
}

TEST_F(TapKeyboardTest, CapsLockShiftAndTheThirdLevelChangeWhatIsTyped) {
    TapRig rig(server.display(), {});
    setKeyboard({"de"});
    ASSERT_TRUE(rig.settle());
    input.tap(key::capsLock);
    startSession(rig);
    EXPECT_TRUE(typesInSession(rig, {key::a}, u"A"));
    input.tap(key::capsLock);
    input.press(key::leftShift);
    EXPECT_TRUE(typesInSession(rig, {key::s}, u"AS"));
    input.release(key::leftShift);
    constexpr std::uint8_t rightAlt = 108;
    input.press(rightAlt);
    EXPECT_TRUE(typesInSession(rig, {key::e}, u"AS€"));
    input.release(rightAlt);
    EXPECT_TRUE(typesInSession(rig, {key::e}, u"AS€e"));
    input.release(key::leftAlt);
    EXPECT_TRUE(rig.waitForClosed(1));
    expectNothingLeft();
}

TEST_F(TapKeyboardTest, DeadKeysAndComposeSequencesGiveTheirText) {
    TapRig rig(server.display(), {.holdMode = false});
    setKeyboard({"-layout", "fr", "-option", "compose:menu"});
    ASSERT_TRUE(rig.settle());
    startSession(rig);
    input.release(key::leftAlt);
    constexpr std::uint8_t circumflex = 34, menu = 135;
    EXPECT_TRUE(typesInSession(rig, {circumflex, key::e}, u"ê"));
    EXPECT_TRUE(typesInSession(rig, {menu, key::o, key::e}, u"êœ"));
    // A key that types nothing ends a sequence.
    EXPECT_TRUE(typesInSession(rig, {circumflex, key::left, key::e}, u"êœe"));
    rig.close();
    EXPECT_TRUE(rig.waitForClosed(1));
    expectNothingLeft();
}

TEST_F(TapKeyboardTest, FollowsAChangeOfTheMapWhileItRuns) {
    TapRig rig(server.display(), {});
    // Alt and Super change places: the trigger follows the modifier, not the key.
    setKeyboard({"-option", "altwin:swap_alt_win"});
    ASSERT_TRUE(rig.settle());
    toggle(key::leftSuper);
    ASSERT_TRUE(rig.waitForClosed(1));
    toggle(key::leftAlt);
    ASSERT_TRUE(rig.settle());
    EXPECT_EQ(rig.opened(), 1);
    setKeyboard({"-option", ""});
    ASSERT_TRUE(rig.settle());
    toggle(key::leftAlt);
    EXPECT_TRUE(rig.waitForClosed(2));
    expectNothingLeft();
}

TEST_F(TapKeyboardTest, TabAndTheKeyAboveItAreTheKeysThatHaveTheirSymbols) {
    TapRig rig(server.display(), {.trigger = SwitcherModifier::command});
    const auto expectTrigger = [&](std::uint8_t keyCode, std::uint16_t code) {
        const int closed = rig.closed();
        rig.forgetSeen();
        toggle(key::leftSuper, keyCode);
        ASSERT_TRUE(rig.waitForClosed(closed + 1)) << "waited for key " << int{keyCode};
        // The tap may hear of the modifier before it hears that the session before has ended.
        const auto seen = rig.seen();
        const auto press = std::ranges::find(seen, TapEvent::Type::keyDown, &TapRig::Seen::type);
        ASSERT_NE(press, seen.end());
        EXPECT_EQ(press->keyCode, code) << int{keyCode};
    };
    // As with a keyboard whose key above Tab is another one.
    setKeyboard({"us", "mac"});
    setKeyMap({"keycode 49 = section", "keycode 94 = grave", "keycode 66 = Tab", "keycode 23 = F13", "clear Lock"});
    ASSERT_TRUE(rig.settle());
    expectTrigger(94, graveKey);
    expectTrigger(key::capsLock, tabKey);
    const int opened = rig.opened();
    toggle(key::leftSuper, key::grave);
    toggle(key::leftSuper, key::tab);
    ASSERT_TRUE(rig.settle());
    EXPECT_EQ(rig.opened(), opened);

    // Where no key has the symbol, and in the second group of a map whose first has it, it is the key in that place.
    for (const char* const layouts : {"ru", "us,ru", "fr"}) {
        setKeyboard({"-layout", layouts, "-option", "grp:caps_toggle"});
        ASSERT_TRUE(rig.settle());
        input.tap(key::capsLock);
        expectTrigger(key::grave, graveKey);
        expectTrigger(key::tab, tabKey);
        input.tap(key::capsLock);
    }
    expectNothingLeft();
}

TEST_F(TapKeyboardTest, AMapThatChangesInTheMiddleOfSessionsLosesNone) {
    TapRig rig(server.display(), {});
    for (int session = 1; session <= 30; ++session) {
        ChildProcess process({.command = {"setxkbmap", "-display", server.display(), session % 2 == 0 ? "us" : "ru"}});
        toggle();
        ASSERT_TRUE(rig.waitForClosed(session)) << session;
        ASSERT_EQ(process.waitForExit(), 0);
    }
    ASSERT_TRUE(rig.settle());
    expectNothingLeft();
}

TEST_F(TapKeyboardTest, AKeyboardThatIsPluggedInGetsItsGrabs) {
    TapRig rig(server.display(), {});
    const auto before = latestKeyboard();
    // A second pair of masters brings test devices of its own: a new slave keyboard, as plugging one in does.
    auto* const connection = desktop.connection();
    struct {
        xcb_input_add_master_t head;
        char name[8];
    } change{};
    change.head = {XCB_INPUT_HIERARCHY_CHANGE_TYPE_ADD_MASTER, 4, 6, 1, 1};
    std::copy_n("second", 6, change.name);
    xcb_input_xi_query_version_reply_t* version =
        xcb_input_xi_query_version_reply(connection, xcb_input_xi_query_version(connection, 2, 2), nullptr);
    std::free(version);
    xcb_input_hierarchy_change_t* const raw = reinterpret_cast<xcb_input_hierarchy_change_t*>(&change);
    const XcbReply<xcb_generic_error_t> error(
        xcb_request_check(connection, xcb_input_xi_change_hierarchy_checked(connection, 1, raw)));
    ASSERT_EQ(error, nullptr);
    ASSERT_TRUE(rig.settle());
    const auto added = latestKeyboard();
    ASSERT_TRUE(added);
    ASSERT_NE(*added, before);
    EXPECT_TRUE(isTabGrabbed(*added, XCB_MOD_MASK_1));
    toggle();
    EXPECT_TRUE(rig.waitForClosed(1));
}

}  // namespace
}  // namespace ferrowyn::x11test

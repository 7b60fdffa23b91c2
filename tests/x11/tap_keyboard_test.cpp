#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <xcb/xcb.h>
#include <xcb/xinput.h>

#include <algorithm>
#include <chrono>
#include <optional>
#include <span>
#include <utility>
#include <vector>

#include "platform/log.h"
#include "platform/x11/x11_event_tap.h"
#include "platform/x11/x11_tap_engine.h"
#include "platform/x11/xcb_reply.h"
#include "tests/x11/harness/child_process.h"
#include "tests/x11/harness/private_x_server.h"
#include "tests/x11/harness/test_desktop.h"
#include "tests/x11/harness/test_input.h"
#include "tests/x11/harness/test_window.h"
#include "tests/x11/harness/window_manager_process.h"
#include "tests/x11/tap_physical_keyboard.h"
#include "tests/x11/tap_rig.h"

namespace ferrowyn::x11test {
namespace {

using testing::Contains;
using testing::Not;

constexpr std::uint16_t aKey = 0, dKey = 2, lKey = 37, oneKey = 18, tabKey = 48, graveKey = 50, escapeKey = 53;

/// A client that holds the keyboard, as a screen locker does.
class KeyboardHolder {
public:
    explicit KeyboardHolder(const std::string& display) : connection_(xcb_connect(display.c_str(), nullptr)) {
        const auto root = xcb_setup_roots_iterator(xcb_get_setup(connection_)).data->root;
        const XcbReply<xcb_grab_keyboard_reply_t> reply(xcb_grab_keyboard_reply(
            connection_,
            xcb_grab_keyboard(connection_, 1, root, XCB_CURRENT_TIME, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC),
            nullptr));
        hasGrab_ = reply != nullptr && reply->status == XCB_GRAB_STATUS_SUCCESS;
    }
    /// The keyboard is free when this returns.
    ~KeyboardHolder() {
        xcb_ungrab_keyboard(connection_, XCB_CURRENT_TIME);
        synchronize();
        xcb_disconnect(connection_);
    }
    KeyboardHolder(const KeyboardHolder&) = delete;
    KeyboardHolder& operator=(const KeyboardHolder&) = delete;

    [[nodiscard]] bool hasGrab() const { return hasGrab_; }
    /// The keys that were pressed until now.
    [[nodiscard]] std::vector<std::uint8_t> takePresses() {
        synchronize();
        std::vector<std::uint8_t> presses;
        while (const XcbReply<xcb_generic_event_t> event{xcb_poll_for_event(connection_)}) {
            if ((event->response_type & 0x7F) == XCB_KEY_PRESS) {
                presses.push_back(reinterpret_cast<const xcb_key_press_event_t*>(event.get())->detail);
            }
        }
        return presses;
    }

private:
    void synchronize() const {
        const XcbReply<xcb_get_input_focus_reply_t> reply(
            xcb_get_input_focus_reply(connection_, xcb_get_input_focus(connection_), nullptr));
    }

    xcb_connection_t* connection_;
    bool hasGrab_ = false;
};

class SilentLog final : public Log {
public:
    void write(LogLevel /*level*/, std::string_view /*category*/, std::string_view /*message*/) override {}
};

class TapKeyboardTest : public testing::Test {
protected:
    void setKeyboard(const std::vector<std::string>& arguments) {
        std::vector<std::string> command{"setxkbmap", "-display", server.display()};
        command.insert(command.end(), arguments.begin(), arguments.end());
        ChildProcess process({.command = command});
        ASSERT_EQ(process.waitForExit(), 0) << process.output();
    }
    /// As the lines of an xmodmap file.
    void setKeyMap(const std::vector<std::string>& lines) {
        std::vector<std::string> command{"xmodmap", "-display", server.display()};
        for (const auto& line : lines) {
            command.insert(command.end(), {"-e", line});
        }
        ChildProcess process({.command = command});
        ASSERT_EQ(process.waitForExit(), 0) << process.output();
    }
    void toggle(std::uint8_t modifier = key::leftAlt, std::uint8_t triggerKey = key::tab) {
        input.chord({modifier, triggerKey});
    }
    void startSession(TapRig& rig, std::uint8_t modifier = key::leftAlt) {
        const int before = rig.opened();
        input.press(modifier);
        input.tap(key::tab);
        ASSERT_TRUE(rig.waitForOpened(before + 1));
        rig.forgetSeen();
    }
    /// Types and waits for what it typed.
    [[nodiscard]] bool typesInSession(TapRig& rig, std::initializer_list<std::uint8_t> keys,
                                      const std::u16string& text) {
        for (const auto keyCode : keys) {
            input.tap(keyCode);
        }
        return rig.waitUntil([&] { return typedBy(rig) == text; });
    }
    /// `waitUntil` holds the lock that `typed` takes: reads what `typed` reads, on a copy.
    static std::u16string typedBy(TapRig& rig) { return rig.typedWhileWaiting(); }

    /// The slave keyboard that came last; nothing where there is none.
    [[nodiscard]] std::optional<xcb_input_device_id_t> latestKeyboard() const {
        auto* const connection = desktop.connection();
        const XcbReply<xcb_input_xi_query_device_reply_t> devices(
            xcb_input_xi_query_device_reply(connection, xcb_input_xi_query_device(connection, 0), nullptr));
        std::optional<xcb_input_device_id_t> latest;
        for (auto device = xcb_input_xi_query_device_infos_iterator(devices.get()); device.rem > 0;
             xcb_input_xi_device_info_next(&device)) {
            if (device.data->type == XCB_INPUT_DEVICE_TYPE_SLAVE_KEYBOARD) {
                latest = device.data->deviceid;
            }
        }
        return latest;
    }
    /// What the tap has grabbed, nobody else can: that is how it shows.
    [[nodiscard]] bool isTabGrabbed(xcb_input_device_id_t keyboard, std::uint32_t modifiers) const {
        auto* const connection = desktop.connection();
        const std::uint32_t mask = XCB_INPUT_XI_EVENT_MASK_KEY_PRESS;
        const XcbReply<xcb_input_xi_passive_grab_device_reply_t> reply(xcb_input_xi_passive_grab_device_reply(
            connection,
            xcb_input_xi_passive_grab_device(connection, XCB_CURRENT_TIME, desktop.root(), XCB_CURSOR_NONE, key::tab,
                                             keyboard, 1, 1, XCB_INPUT_GRAB_TYPE_KEYCODE, 1, 1, 0, &mask, &modifiers),
            nullptr));
        EXPECT_NE(reply, nullptr);
        const bool isRefused = reply != nullptr && reply->num_modifiers == 1;
        if (!isRefused) {
            xcb_input_xi_passive_ungrab_device(connection, desktop.root(), key::tab, keyboard, 1,
                                               XCB_INPUT_GRAB_TYPE_KEYCODE, &modifiers);
        }
        return isRefused;
    }
    /// No key sets the modifier any more, and the tap knows it.
    void removeModifierKeys(TapRig& rig, xcb_map_index_t modifier) {
        auto* const connection = desktop.connection();
        const XcbReply<xcb_get_modifier_mapping_reply_t> map(
            xcb_get_modifier_mapping_reply(connection, xcb_get_modifier_mapping(connection), nullptr));
        ASSERT_NE(map, nullptr);
        const std::size_t perModifier = map->keycodes_per_modifier;
        const std::span keys(xcb_get_modifier_mapping_keycodes(map.get()), 8 * perModifier);
        std::ranges::fill(keys.subspan(modifier * perModifier, perModifier), xcb_keycode_t{0});
        const XcbReply<xcb_set_modifier_mapping_reply_t> reply(xcb_set_modifier_mapping_reply(
            connection, xcb_set_modifier_mapping(connection, map->keycodes_per_modifier, keys.data()), nullptr));
        ASSERT_NE(reply, nullptr);
        ASSERT_EQ(reply->status, XCB_MAPPING_STATUS_SUCCESS);
        ASSERT_TRUE(rig.settle());
    }
    /// Whether the lock is on, whichever key has set it.
    [[nodiscard]] bool isCapsLockOn() const {
        const XcbReply<xcb_query_pointer_reply_t> pointer(xcb_query_pointer_reply(
            desktop.connection(), xcb_query_pointer(desktop.connection(), desktop.root()), nullptr));
        return pointer != nullptr && (pointer->mask & XCB_MOD_MASK_LOCK) != 0;
    }

    void expectNothingLeft() {
        EXPECT_TRUE(desktop.waitForUntouchedKeyboard())
            << (desktop.anyKeyIsDown() ? "a key is stuck" : "a grab is left");
    }

    PrivateXServer server;
    WindowManagerProcess manager{server, "openbox"};
    TestDesktop desktop{server.display()};
    TestWindow window{server.display(), {.title = "Window"}};
    TestInput input{server.display()};
};

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

TEST_F(TapKeyboardTest, ShiftReversesTheTriggerAndIsReportedAsAFlag) {
    TapRig rig(server.display(), {});
    input.chord({key::leftAlt, key::leftShift, key::tab});
    ASSERT_TRUE(rig.waitForClosed(1));
    EXPECT_EQ(rig.seen().front().flags, event_flags::option | event_flags::shift);
    EXPECT_EQ(rig.seen().front().keyCode, tabKey);
}

TEST_F(TapKeyboardTest, TheKeyLeftOfOneIsATriggerOnlyWithCommand) {
    TapRig rig(server.display(), {.trigger = SwitcherModifier::command});
    toggle(key::leftSuper, key::grave);
    ASSERT_TRUE(rig.waitForClosed(1));
    EXPECT_EQ(rig.seen().front().keyCode, graveKey);
    EXPECT_EQ(rig.seen().front().flags, event_flags::command);

    rig.tap().setTrigger(SwitcherModifier::option);
    ASSERT_TRUE(rig.settle());
    rig.forgetSeen();
    toggle(key::leftAlt, key::grave);
    ASSERT_TRUE(rig.settle());
    EXPECT_EQ(rig.opened(), 1);
    EXPECT_THAT(rig.seen(), testing::IsEmpty());
}

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

TEST_F(TapKeyboardTest, ControlIsAlsoCommandInASessionUnlessItIsTheTrigger) {
    TapRig rig(server.display(), {});
    startSession(rig);
    input.chord({key::leftControl, key::d});
    ASSERT_TRUE(rig.settle());
    const auto seen = rig.seen();
    const auto pressed = std::find_if(seen.begin(), seen.end(), [](const auto& event) {
        return event.type == TapEvent::Type::keyDown && event.keyCode == dKey;
    });
    ASSERT_NE(pressed, seen.end());
    EXPECT_EQ(pressed->flags, event_flags::option | event_flags::control | event_flags::command);
    EXPECT_EQ(pressed->text, u"d");
    input.release(key::leftAlt);
    EXPECT_TRUE(rig.waitForClosed(1));
    ASSERT_TRUE(rig.settle());

    rig.tap().setTrigger(SwitcherModifier::control);
    ASSERT_TRUE(rig.settle());
    rig.forgetSeen();
    toggle(key::leftControl);
    ASSERT_TRUE(rig.settle());
    ASSERT_THAT(rig.seen(), Not(testing::IsEmpty()));
    EXPECT_EQ(rig.seen().front().flags, event_flags::control);
}

TEST_F(TapKeyboardTest, ATriggerWaitsForNoEndOfASessionThatTheModifierDoesNotEnd) {
    TapRig rig(server.display(), {.holdMode = false});
    startSession(rig);
    input.release(key::leftAlt);
    auto shortest = std::chrono::steady_clock::duration::max();
    for (int move = 1; move <= 3; ++move) {
        const auto pressedAt = std::chrono::steady_clock::now();
        toggle();
        ASSERT_TRUE(rig.waitUntil([&] { return rig.moves() == move; }));
        shortest = std::min(shortest, std::chrono::steady_clock::now() - pressedAt);
    }
    // Generous, for a loaded machine: a key that waits does so for a quarter of a second.
    EXPECT_LT(shortest, milliseconds{100});
    rig.close();
    EXPECT_TRUE(rig.waitForClosed(1));
    expectNothingLeft();
}

TEST_F(TapKeyboardTest, AHeldControlDoesNotKeepASessionOfCommandOpen) {
    TapRig rig(server.display(), {.trigger = SwitcherModifier::command});
    startSession(rig, key::leftSuper);
    input.press(key::leftControl);
    input.release(key::leftSuper);
    EXPECT_TRUE(rig.waitForClosed(1));
    input.release(key::leftControl);
    expectNothingLeft();
}

TEST_F(TapKeyboardTest, ControlAndTabAreNotTheTriggerOfCommand) {
    TapRig rig(server.display(), {.trigger = SwitcherModifier::command, .holdMode = false});
    startSession(rig, key::leftSuper);
    input.release(key::leftSuper);
    ASSERT_TRUE(rig.settle());
    rig.forgetSeen();
    input.chord({key::leftControl, key::tab});
    input.chord({key::leftControl, key::d});
    ASSERT_TRUE(rig.settle());
    EXPECT_EQ(rig.moves(), 0);
    std::vector<std::pair<std::uint16_t, std::uint64_t>> pressed;
    for (const auto& event : rig.seen()) {
        if (event.type == TapEvent::Type::keyDown) {
            pressed.emplace_back(event.keyCode, event.flags);
        }
    }
    EXPECT_THAT(pressed, testing::ElementsAre(std::pair(tabKey, event_flags::control),
                                              std::pair(dKey, event_flags::control | event_flags::command)));
    rig.close();
    EXPECT_TRUE(rig.waitForClosed(1));
    expectNothingLeft();
}

TEST_F(TapKeyboardTest, NeverOpensWhileAnotherClientHoldsTheKeyboardAndProbesOnlyOnRequest) {
    TapRig rig(server.display(), {});
    {
        KeyboardHolder holder(server.display());
        ASSERT_TRUE(holder.hasGrab());
        toggle();
        ASSERT_TRUE(rig.waitUntil([&] { return rig.context().isKeyboardHeldElsewhere.load(); }));
        ASSERT_TRUE(rig.settle());
        EXPECT_THAT(rig.seen(), testing::IsEmpty());
        EXPECT_THAT(holder.takePresses(), testing::ElementsAre(key::leftAlt, key::tab));
        rig.context().requestKeyboardProbe();
        ASSERT_TRUE(rig.settle());
        EXPECT_TRUE(rig.context().isKeyboardHeldElsewhere);
    }
    ASSERT_TRUE(rig.settle());
    EXPECT_TRUE(rig.context().isKeyboardHeldElsewhere) << "probed without being asked";
    rig.context().requestKeyboardProbe();
    ASSERT_TRUE(rig.settle());
    EXPECT_FALSE(rig.context().isKeyboardHeldElsewhere);
    EXPECT_TRUE(desktop.keyboardIsFree());
    toggle();
    EXPECT_TRUE(rig.waitForClosed(1));
    expectNothingLeft();
}

TEST_F(TapKeyboardTest, ASessionThatOpensClearsThatTheKeyboardIsHeld) {
    TapRig rig(server.display(), {});
    {
        const KeyboardHolder holder(server.display());
        toggle();
        ASSERT_TRUE(rig.waitUntil([&] { return rig.context().isKeyboardHeldElsewhere.load(); }));
    }
    toggle();
    EXPECT_TRUE(rig.waitForClosed(1));
    EXPECT_FALSE(rig.context().isKeyboardHeldElsewhere);
}

TEST_F(TapKeyboardTest, GivesTheKeyboardBackWhenTheMainThreadDoesNotAnswer) {
    TapRig rig(server.display(), {.answers = false});
    toggle();
    ASSERT_TRUE(rig.waitUntil([&] { return rig.requests() == 1; }));
    EXPECT_FALSE(desktop.keyboardIsFree());
    expectNothingLeft();
    EXPECT_EQ(rig.seen().size(), 1U);
}

TEST_F(TapKeyboardTest, GivesTheKeyboardBackWhenNoSessionIsOpenedAndLeavesTheKeysAlone) {
    TapRig rig(server.display(), {.opensSessions = false});
    for (int request = 1; request <= 20; ++request) {
        toggle();
        ASSERT_TRUE(rig.waitUntil([&] { return rig.requests() == request; }));
    }
    ASSERT_TRUE(rig.settle());
    expectNothingLeft();
    input.tap(key::a);
    EXPECT_TRUE(window.waitForKeyPress(key::a)) << "the keyboard belongs to the window again";
}

TEST_F(TapKeyboardTest, AHiddenSwitcherSeesNoOtherKey) {
    TapRig rig(server.display(), {});
    ASSERT_TRUE(desktop.waitForFocus(window.id())) << "keys go nowhere before";
    input.tap(key::a);
    input.tap(key::tab);
    input.chord({key::leftAlt, key::a});
    input.chord({key::leftControl, key::tab});
    ASSERT_TRUE(rig.settle());
    EXPECT_THAT(rig.seen(), testing::IsEmpty());
    EXPECT_THAT(window.takeInput().keyPresses, testing::IsSupersetOf({key::a, key::tab}));
    EXPECT_TRUE(desktop.keyboardIsFree());
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

TEST_F(TapKeyboardTest, ASessionFromTheMenuGetsItsKeysOnceTheMenuLetsTheKeyboardGo) {
    TapRig rig(server.display(), {});
    {
        const KeyboardHolder menu(server.display());
        rig.openFromMenu();
        ASSERT_TRUE(rig.waitForOpened(1));
        ASSERT_TRUE(rig.settle());
    }
    ASSERT_TRUE(rig.waitUntil([&] { return !rig.seenWhileWaiting().empty(); })) << "the tap tells the flags it found";
    EXPECT_TRUE(typesInSession(rig, {key::a}, u"a"));
    rig.close();
    ASSERT_TRUE(rig.waitForClosed(1));
    expectNothingLeft();
}

TEST_F(TapKeyboardTest, TheTriggerFreezesNoKeyboardWhileASessionFromTheMenuHasNone) {
    TapRig rig(server.display(), {});
    KeyboardHolder holder(server.display());
    ASSERT_TRUE(holder.hasGrab());
    rig.openFromMenu();
    ASSERT_TRUE(rig.waitForOpened(1));
    // By then the tap has stopped asking for the keyboard.
    ASSERT_TRUE(rig.waitUntil([&] { return rig.context().isKeyboardHeldElsewhere.load(); }, milliseconds{3000}) ||
                rig.context().isKeyboardHeldElsewhere.load());
    toggle();
    ASSERT_TRUE(rig.settle());
    static_cast<void>(holder.takePresses());
    input.tap(key::a);
    EXPECT_THAT(holder.takePresses(), Contains(key::a));
    rig.close();
    ASSERT_TRUE(rig.waitForClosed(1));
}

TEST_F(TapKeyboardTest, AWindowManagerThatStartsLaterOrRestartsDoesNotTakeTheTrigger) {
    TapRig rig(server.display(), {});
    toggle();
    ASSERT_TRUE(rig.waitForClosed(1));
    const WindowManagerProcess next(server, "xfwm4", true);
    for (int session = 2; session <= 20; ++session) {
        toggle();
        ASSERT_TRUE(rig.waitForClosed(session));
    }
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

TEST_F(TapKeyboardTest, GivesTheKeyboardBackAndReportsItWhenTheSessionIsLocked) {
    // Not Alt: a disabled tap would leave the trigger to the manager, which takes the keyboard in its own time and may
    // miss the release.
    TapRig rig(server.display(), {.trigger = SwitcherModifier::control});
    startSession(rig, key::leftControl);
    rig.taps().notifyKeyboardUnavailable();
    // The release of Tab may still come before it.
    ASSERT_TRUE(rig.waitUntil([&] {
        const auto& seen = rig.seenWhileWaiting();
        return !seen.empty() && seen.back().type == TapEvent::Type::disabledByUserInput;
    }));
    EXPECT_FALSE(rig.tap().isEnabled());
    EXPECT_TRUE(desktop.waitForFreeKeyboard());
    input.release(key::leftControl);
    rig.close();
    ASSERT_TRUE(rig.waitForClosed(1));
    toggle(key::leftControl);
    ASSERT_TRUE(rig.settle());
    EXPECT_EQ(rig.opened(), 1);
    rig.tap().setEnabled(true);
    EXPECT_TRUE(rig.tap().isEnabled());
    ASSERT_TRUE(rig.settle());
    toggle(key::leftControl);
    EXPECT_TRUE(rig.waitForClosed(2));
    expectNothingLeft();
}

TEST_F(TapKeyboardTest, OfSeveralRequestsTheLastSaysWhetherItIsEnabled) {
    TapRig rig(server.display(), {});
    for (int repetition = 0; repetition < 20; ++repetition) {
        rig.taps().notifyKeyboardUnavailable();
        rig.tap().setEnabled(true);
        ASSERT_TRUE(rig.settle());
        EXPECT_TRUE(rig.tap().isEnabled());
        rig.tap().setEnabled(true);
        rig.tap().setEnabled(false);
        ASSERT_TRUE(rig.settle());
        EXPECT_FALSE(rig.tap().isEnabled());
    }
}

TEST_F(TapKeyboardTest, AnInvalidatedOrDisabledTapGivesTheKeyboardBack) {
    TapRig rig(server.display(), {});
    startSession(rig);
    rig.tap().setEnabled(false);
    EXPECT_TRUE(desktop.waitForFreeKeyboard());
    input.release(key::leftAlt);
    rig.close();
    ASSERT_TRUE(rig.waitForClosed(1));
    rig.tap().setEnabled(true);
    ASSERT_TRUE(rig.settle());
    startSession(rig);
    rig.tap().invalidate();
    EXPECT_TRUE(desktop.keyboardIsFree());
    EXPECT_FALSE(rig.tap().isEnabled());
    rig.tap().setEnabled(true);
    EXPECT_FALSE(rig.tap().isEnabled());
    input.release(key::leftAlt);
    expectNothingLeft();
}

TEST_F(TapKeyboardTest, ALostConnectionDisablesTheTapForGoodAndCostsNoTime) {
    TapRig rig(server.display(), {});
    server.kill();
    ASSERT_TRUE(rig.waitUntil([&] { return !rig.tap().isEnabled(); }));
    rig.tap().setEnabled(true);
    EXPECT_FALSE(rig.tap().isEnabled());
    const auto before = rig.tapThreadCpuTime();
    EXPECT_FALSE(rig.waitUntil([] { return false; }, milliseconds{500}));
    EXPECT_LT(rig.tapThreadCpuTime() - before, std::chrono::milliseconds(50));
}

TEST_F(TapKeyboardTest, ATapThatCannotBeginAnewSaysSoAndTriesAgainWhenItIsEnabled) {
    SilentLog log;
    X11InputContext context;
    std::vector<TapEvent::Type> told;
    xcb_pixmap_t handle = XCB_PIXMAP_NONE;
    const auto make = [&](SwitcherModifier trigger) {
        auto connection = X11Connection::open(server.display().c_str());
        handle = xcb_generate_id(connection->get());
        xcb_create_pixmap(connection->get(), 1, handle, connection->root(), 1, 1);
        return X11TapEngine::create(
            std::move(connection), nullptr, trigger,
            [&](const TapEvent& event) {
                told.push_back(event.type());
                return TapVerdict{};
            },
            context, log);
    };
    bool isRefused = true;
    X11EventTap tap(make(SwitcherModifier::option), SwitcherModifier::option,
                    [&](SwitcherModifier trigger) { return isRefused ? nullptr : make(trigger); });
    tap.noteServingThread();
    tap.setEnabled(true);
    ASSERT_TRUE(tap.isEnabled());
    // Somebody ends the connection, as the guard does.
    xcb_kill_client(desktop.connection(), handle);
    EXPECT_TRUE(desktop.waitUntil([&] {
        tap.serve();
        return !tap.isEnabled();
    }));
    EXPECT_THAT(told, testing::ElementsAre(TapEvent::Type::disabledByUserInput));
    tap.setEnabled(true);
    EXPECT_FALSE(tap.isEnabled());
    tap.setTrigger(SwitcherModifier::control);
    isRefused = false;
    tap.setEnabled(true);
    EXPECT_TRUE(tap.isEnabled());
    told.clear();
    input.chord({key::leftControl, key::tab});
    EXPECT_TRUE(desktop.waitUntil([&] {
        tap.serve();
        return testing::Value(told, Contains(TapEvent::Type::keyDown));
    }));
    tap.invalidate();
    input.releaseAll();
}

TEST_F(TapKeyboardTest, TellsWhenTheUserLastActedAndWhereThePointerIs) {
    TapRig rig(server.display(), {});
    input.movePointer(321, 123);
    toggle();
    ASSERT_TRUE(rig.waitForClosed(1));
    EXPECT_EQ(rig.context().pointer(), (std::pair<std::uint32_t, std::uint32_t>{321, 123}));
    const auto time = rig.context().lastUserTime.load();
    EXPECT_NE(time, 0U);
    toggle();
    ASSERT_TRUE(rig.waitForClosed(2));
    EXPECT_GE(rig.context().lastUserTime.load(), time);
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

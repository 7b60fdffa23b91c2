#pragma once

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
#include "platform/x11/keyboard/x11_keyboard_tap.h"
#include "platform/x11/keyboard/x11_tap_engine.h"
#include "platform/x11/xcb_reply.h"
#include "tests/x11/adapter/tap_rig.h"
#include "tests/x11/harness/child_process.h"
#include "tests/x11/harness/desktop_processes.h"
#include "tests/x11/harness/test_desktop.h"
#include "tests/x11/harness/test_input.h"
#include "tests/x11/harness/test_window.h"

namespace ferrowyn::x11test {

inline constexpr std::uint16_t aKey = 0, dKey = 2, lKey = 37, oneKey = 18, tabKey = 48, graveKey = 50, escapeKey = 53;

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

}  // namespace ferrowyn::x11test

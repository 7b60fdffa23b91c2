#include "tests/x11/harness/test_input.h"

#include <xcb/xinput.h>
#include <xcb/xtest.h>

#include <stdexcept>
#include <string_view>

#include "platform/x11/xcb_reply.h"

namespace ferrowyn::x11test {

TestInput::TestInput(const std::string& display) {
    connection_ = xcb_connect(display.c_str(), nullptr);
    if (xcb_connection_has_error(connection_) != 0) {
        xcb_disconnect(connection_);
        throw std::runtime_error("no X server at " + display);
    }
    root_ = xcb_setup_roots_iterator(xcb_get_setup(connection_)).data->root;
}

TestInput::~TestInput() {
    xcb_disconnect(connection_);
}

void TestInput::send(std::uint8_t type, std::uint8_t detail, int x, int y) {
    xcb_test_fake_input(connection_, type, detail, XCB_CURRENT_TIME, root_, static_cast<std::int16_t>(x),
                        static_cast<std::int16_t>(y), 0);
    // Wait until the server has taken the event. A busy server would otherwise read several at once, without the pauses
    // between them.
    const XcbReply<xcb_get_input_focus_reply_t> taken(
        xcb_get_input_focus_reply(connection_, xcb_get_input_focus(connection_), nullptr));
}

void TestInput::press(std::uint8_t keyCode) {
    send(XCB_KEY_PRESS, keyCode);
}
void TestInput::release(std::uint8_t keyCode) {
    send(XCB_KEY_RELEASE, keyCode);
}

void TestInput::tap(std::uint8_t keyCode) {
    press(keyCode);
    release(keyCode);
}

void TestInput::chord(std::initializer_list<std::uint8_t> keyCodes) {
    for (const auto keyCode : keyCodes) {
        press(keyCode);
    }
    for (auto keyCode = keyCodes.end(); keyCode != keyCodes.begin();) {
        release(*--keyCode);
    }
}

void TestInput::grabServer() {
    xcb_grab_server(connection_);
}
void TestInput::ungrabServer() {
    xcb_ungrab_server(connection_);
    xcb_flush(connection_);
}

void TestInput::releaseAll() {
    const XcbReply<xcb_query_keymap_reply_t> keys(
        xcb_query_keymap_reply(connection_, xcb_query_keymap(connection_), nullptr));
    for (unsigned keyCode = 8; keys && keyCode < 256; ++keyCode) {
        if ((keys->keys[keyCode / 8] >> (keyCode % 8) & 1U) != 0) {
            release(static_cast<std::uint8_t>(keyCode));
        }
    }
}

void TestInput::movePointer(int x, int y) {
    send(XCB_MOTION_NOTIFY, 0, x, y);
}
void TestInput::pressButton(std::uint8_t button) {
    send(XCB_BUTTON_PRESS, button);
}
void TestInput::releaseButton(std::uint8_t button) {
    send(XCB_BUTTON_RELEASE, button);
}

void TestInput::click(int x, int y, std::uint8_t button) {
    movePointer(x, y);
    pressButton(button);
    releaseButton(button);
}

TapPhysicalKeyboard::TapPhysicalKeyboard(const std::string& display)
    : connection_(xcb_connect(display.c_str(), nullptr)) {
    const XcbReply<xcb_input_xi_query_version_reply_t> version(
        xcb_input_xi_query_version_reply(connection_, xcb_input_xi_query_version(connection_, 2, 2), nullptr));
    firstEvent_ = xcb_get_extension_data(connection_, &xcb_input_id)->first_event;
    const XcbReply<xcb_input_xi_query_device_reply_t> devices(xcb_input_xi_query_device_reply(
        connection_, xcb_input_xi_query_device(connection_, XCB_INPUT_DEVICE_ALL), nullptr));
    for (auto device = xcb_input_xi_query_device_infos_iterator(devices.get()); device.rem > 0;
         xcb_input_xi_device_info_next(&device)) {
        const std::string_view name(xcb_input_xi_device_info_name(device.data), device.data->name_len);
        if (device.data->type == XCB_INPUT_DEVICE_TYPE_SLAVE_KEYBOARD && name.find("XTEST") == std::string_view::npos) {
            device_ = static_cast<std::uint8_t>(device.data->deviceid);
        }
    }
}

TapPhysicalKeyboard::~TapPhysicalKeyboard() {
    xcb_disconnect(connection_);
}

void TapPhysicalKeyboard::press(std::uint8_t keyCode) {
    send(XCB_INPUT_DEVICE_KEY_PRESS, keyCode);
}

void TapPhysicalKeyboard::release(std::uint8_t keyCode) {
    send(XCB_INPUT_DEVICE_KEY_RELEASE, keyCode);
}

void TapPhysicalKeyboard::tap(std::uint8_t keyCode) {
    press(keyCode);
    release(keyCode);
}

void TapPhysicalKeyboard::tapUnheard(std::initializer_list<std::uint8_t> keyCodes, std::chrono::milliseconds silence) {
    xcb_grab_server(connection_);
    for (const auto keyCode : keyCodes) {
        tap(keyCode);
    }
    std::this_thread::sleep_for(silence);
    xcb_ungrab_server(connection_);
    xcb_flush(connection_);
}

void TapPhysicalKeyboard::send(std::uint8_t type, std::uint8_t keyCode) {
    xcb_test_fake_input(connection_, static_cast<std::uint8_t>(firstEvent_ + type), keyCode, XCB_CURRENT_TIME,
                        XCB_WINDOW_NONE, 0, 0, device_);
    const XcbReply<xcb_get_input_focus_reply_t> sync(
        xcb_get_input_focus_reply(connection_, xcb_get_input_focus(connection_), nullptr));
}

}  // namespace ferrowyn::x11test

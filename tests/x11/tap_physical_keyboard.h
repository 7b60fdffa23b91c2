#pragma once

#include <xcb/xcb.h>
#include <xcb/xinput.h>
#include <xcb/xtest.h>

#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <initializer_list>
#include <string>
#include <string_view>
#include <thread>

#include "platform/x11/xcb_reply.h"

namespace ferrowyn::x11test {

/// Drives the server's own keyboard instead of its test keyboard. That is what the user's keyboard is to the server: a
/// key that is down there is not let go by what the test keyboard does.
class TapPhysicalKeyboard {
public:
    explicit TapPhysicalKeyboard(const std::string& display) : connection_(xcb_connect(display.c_str(), nullptr)) {
        const XcbReply<xcb_input_xi_query_version_reply_t> version(
            xcb_input_xi_query_version_reply(connection_, xcb_input_xi_query_version(connection_, 2, 2), nullptr));
        firstEvent_ = xcb_get_extension_data(connection_, &xcb_input_id)->first_event;
        const XcbReply<xcb_input_xi_query_device_reply_t> devices(xcb_input_xi_query_device_reply(
            connection_, xcb_input_xi_query_device(connection_, XCB_INPUT_DEVICE_ALL), nullptr));
        for (auto device = xcb_input_xi_query_device_infos_iterator(devices.get()); device.rem > 0;
             xcb_input_xi_device_info_next(&device)) {
            const std::string_view name(xcb_input_xi_device_info_name(device.data), device.data->name_len);
            if (device.data->type == XCB_INPUT_DEVICE_TYPE_SLAVE_KEYBOARD &&
                name.find("XTEST") == std::string_view::npos) {
                device_ = static_cast<std::uint8_t>(device.data->deviceid);
            }
        }
    }
    ~TapPhysicalKeyboard() { xcb_disconnect(connection_); }
    TapPhysicalKeyboard(const TapPhysicalKeyboard&) = delete;
    TapPhysicalKeyboard& operator=(const TapPhysicalKeyboard&) = delete;

    [[nodiscard]] bool isThere() const { return device_ != 0; }
    void press(std::uint8_t keyCode) { send(XCB_INPUT_DEVICE_KEY_PRESS, keyCode); }
    void release(std::uint8_t keyCode) { send(XCB_INPUT_DEVICE_KEY_RELEASE, keyCode); }
    void tap(std::uint8_t keyCode) {
        press(keyCode);
        release(keyCode);
    }
    /// Taps keys while no other client gets the server's ear, and keeps it from them for this long afterwards.
    void tapUnheard(std::initializer_list<std::uint8_t> keyCodes, std::chrono::milliseconds silence) {
        xcb_grab_server(connection_);
        for (const auto keyCode : keyCodes) {
            tap(keyCode);
        }
        std::this_thread::sleep_for(silence);
        xcb_ungrab_server(connection_);
        xcb_flush(connection_);
    }

private:
    void send(std::uint8_t type, std::uint8_t keyCode) {
        xcb_test_fake_input(connection_, static_cast<std::uint8_t>(firstEvent_ + type), keyCode, XCB_CURRENT_TIME,
                            XCB_WINDOW_NONE, 0, 0, device_);
        const XcbReply<xcb_get_input_focus_reply_t> sync(
            xcb_get_input_focus_reply(connection_, xcb_get_input_focus(connection_), nullptr));
    }

    xcb_connection_t* connection_;
    std::uint8_t firstEvent_ = 0;
    std::uint8_t device_ = 0;
};

}  // namespace ferrowyn::x11test

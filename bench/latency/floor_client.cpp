// The least that any switcher must do, to compare with: a bare client that grabs the key, maps and fills a window of
// the panel's size, and, when the modifier goes up, unmaps it and asks for the other one of two windows to be
// activated.
//
// Arguments: x y width height of the panel in pixels, then the two windows, the one to be activated first in front.

#include <xcb/xcb.h>
// The header uses a C++ keyword as a name.
#define explicit explicit_
#include <xcb/xinput.h>
#undef explicit

#include <array>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <utility>

namespace {

constexpr std::uint32_t tabKey = 23;
constexpr std::uint32_t leftAltKey = 64;
constexpr std::uint32_t panelColour = 0xF0F0F0;

struct Free {
    void operator()(void* memory) const { std::free(memory); }
};
template <typename Reply>
using Owned = std::unique_ptr<Reply, Free>;

class FloorClient {
public:
    FloorClient(xcb_rectangle_t frame, xcb_window_t first, xcb_window_t second)
        : frame_(frame), next_(first), afterNext_(second) {
        const Owned<xcb_intern_atom_reply_t> atom(
            xcb_intern_atom_reply(connection_, xcb_intern_atom(connection_, 0, 18, "_NET_ACTIVE_WINDOW"), nullptr));
        activeWindow_ = atom->atom;
        const Owned<xcb_input_xi_query_version_reply_t> version(
            xcb_input_xi_query_version_reply(connection_, xcb_input_xi_query_version(connection_, 2, 2), nullptr));
        makeWindow();
        grabTrigger();
        std::puts("ready");
        std::fflush(stdout);
    }

    void run() {
        while (const Owned<xcb_generic_event_t> event{xcb_wait_for_event(connection_)}) {
            if ((event->response_type & 0x7F) != XCB_GE_GENERIC) {
                continue;
            }
            const auto& key = reinterpret_cast<const xcb_input_key_press_event_t&>(*event);
            if (key.event_type == XCB_INPUT_KEY_PRESS && key.detail == tabKey && !isShown_) {
                show(key.deviceid, key.sourceid);
            } else if (key.event_type == XCB_INPUT_KEY_RELEASE && key.detail == leftAltKey && isShown_) {
                activateNext(key.time);
            }
        }
    }

private:
    void makeWindow() {
        window_ = xcb_generate_id(connection_);
        const std::array<std::uint32_t, 1> overrideRedirect{1};
        xcb_create_window(connection_, XCB_COPY_FROM_PARENT, window_, screen_->root, frame_.x, frame_.y, frame_.width,
                          frame_.height, 0, XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT,
                          XCB_CW_OVERRIDE_REDIRECT, overrideRedirect.data());
        context_ = xcb_generate_id(connection_);
        xcb_create_gc(connection_, context_, window_, XCB_GC_FOREGROUND, &panelColour);
    }

    /// At the devices themselves: a manager that binds the same key has the ordinary grab already.
    void grabTrigger() {
        const std::uint32_t mask = XCB_INPUT_XI_EVENT_MASK_KEY_PRESS | XCB_INPUT_XI_EVENT_MASK_KEY_RELEASE;
        const std::uint32_t modifiers = XCB_MOD_MASK_1;
        const Owned<xcb_input_xi_passive_grab_device_reply_t> reply(xcb_input_xi_passive_grab_device_reply(
            connection_,
            xcb_input_xi_passive_grab_device(connection_, XCB_CURRENT_TIME, screen_->root, XCB_NONE, tabKey,
                                             XCB_INPUT_DEVICE_ALL, 1, 1, XCB_INPUT_GRAB_TYPE_KEYCODE,
                                             XCB_INPUT_GRAB_MODE_22_ASYNC, XCB_GRAB_MODE_ASYNC,
                                             XCB_INPUT_GRAB_OWNER_NO_OWNER, &mask, &modifiers),
            nullptr));
        if (!reply || reply->num_modifiers != 0) {
            std::fputs("the key is refused\n", stderr);
            std::exit(1);
        }
    }

    void show(xcb_input_device_id_t device, xcb_input_device_id_t source) {
        isShown_ = true;
        const std::uint32_t above = XCB_STACK_MODE_ABOVE;
        xcb_configure_window(connection_, window_, XCB_CONFIG_WINDOW_STACK_MODE, &above);
        xcb_map_window(connection_, window_);
        const xcb_rectangle_t whole{0, 0, frame_.width, frame_.height};
        xcb_poly_fill_rectangle(connection_, window_, context_, 1, &whole);
        // The rest of the session comes through the master keyboard: the device's own grab would end with the Tab key.
        const std::uint32_t mask = XCB_INPUT_XI_EVENT_MASK_KEY_PRESS | XCB_INPUT_XI_EVENT_MASK_KEY_RELEASE;
        const auto grab = xcb_input_xi_grab_device(
            connection_, screen_->root, XCB_CURRENT_TIME, XCB_NONE, masterKeyboard, XCB_INPUT_GRAB_MODE_22_ASYNC,
            XCB_INPUT_GRAB_MODE_22_ASYNC, XCB_INPUT_GRAB_OWNER_NO_OWNER, 1, &mask);
        xcb_discard_reply(connection_, grab.sequence);
        xcb_input_xi_ungrab_device(connection_, XCB_CURRENT_TIME, device);
        xcb_input_xi_ungrab_device(connection_, XCB_CURRENT_TIME, source);
        xcb_flush(connection_);
    }

    void activateNext(xcb_timestamp_t time) {
        isShown_ = false;
        xcb_input_xi_ungrab_device(connection_, XCB_CURRENT_TIME, masterKeyboard);
        xcb_unmap_window(connection_, window_);
        xcb_client_message_event_t message{};
        message.response_type = XCB_CLIENT_MESSAGE;
        message.format = 32;
        message.window = next_;
        message.type = activeWindow_;
        message.data.data32[0] = 2;  // as a pager does
        message.data.data32[1] = time;
        xcb_send_event(connection_, 0, screen_->root,
                       XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT,
                       reinterpret_cast<const char*>(&message));
        xcb_flush(connection_);
        std::swap(next_, afterNext_);
    }

    static constexpr xcb_input_device_id_t masterKeyboard = 3;  // the first one; a private server has no other

    xcb_connection_t* connection_ = xcb_connect(nullptr, nullptr);
    xcb_screen_t* screen_ = xcb_setup_roots_iterator(xcb_get_setup(connection_)).data;
    xcb_rectangle_t frame_;
    xcb_window_t next_;
    xcb_window_t afterNext_;
    xcb_window_t window_ = XCB_WINDOW_NONE;
    xcb_gcontext_t context_ = 0;
    xcb_atom_t activeWindow_ = XCB_ATOM_NONE;
    bool isShown_ = false;
};

}  // namespace

int main(int argumentCount, char** arguments) {
    if (argumentCount != 7) {
        std::fputs("usage: ferrowyn_latency_floor x y width height first second\n", stderr);
        return 2;
    }
    const auto number = [&](int index) { return std::strtoul(arguments[index], nullptr, 0); };
    FloorClient client({static_cast<std::int16_t>(number(1)), static_cast<std::int16_t>(number(2)),
                        static_cast<std::uint16_t>(number(3)), static_cast<std::uint16_t>(number(4))},
                       static_cast<xcb_window_t>(number(5)), static_cast<xcb_window_t>(number(6)));
    client.run();
}

#include "tests/x11/harness/test_window.h"

#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <stdexcept>

#include "platform/x11/xcb_reply.h"

namespace ferrowyn::x11test {

TestWindow::TestWindow(const std::string& display, const Options& options) {
    connection_ = xcb_connect(display.c_str(), nullptr);
    if (xcb_connection_has_error(connection_) != 0) {
        xcb_disconnect(connection_);
        throw std::runtime_error("no X server at " + display);
    }
    const auto* const screen = xcb_setup_roots_iterator(xcb_get_setup(connection_)).data;
    window_ = xcb_generate_id(connection_);
    const std::uint32_t values[] = {
        options.colour, options.overrideRedirect ? 1U : 0U,
        XCB_EVENT_MASK_KEY_PRESS | XCB_EVENT_MASK_KEY_RELEASE | XCB_EVENT_MASK_BUTTON_PRESS};
    xcb_create_window(connection_, XCB_COPY_FROM_PARENT, window_, screen->root, static_cast<std::int16_t>(options.x),
                      static_cast<std::int16_t>(options.y), static_cast<std::uint16_t>(options.width),
                      static_cast<std::uint16_t>(options.height), 0, XCB_WINDOW_CLASS_INPUT_OUTPUT, screen->root_visual,
                      XCB_CW_BACK_PIXEL | XCB_CW_OVERRIDE_REDIRECT | XCB_CW_EVENT_MASK, values);
    setTitle(options.title);
    const std::string classes = options.className + '\0' + options.className + '\0';
    setProperty("WM_CLASS", "STRING", 8, classes.data(), static_cast<std::uint32_t>(classes.size()));
    const std::uint32_t pid = options.pid.value_or(static_cast<std::uint32_t>(getpid()));
    setProperty("_NET_WM_PID", "CARDINAL", 32, &pid, 1);
    // Managers do not move a window whose position the user has chosen.
    const std::uint32_t sizeHints[18] = {1U | 2U, static_cast<std::uint32_t>(options.x),
                                         static_cast<std::uint32_t>(options.y)};
    setProperty("WM_NORMAL_HINTS", "WM_SIZE_HINTS", 32, sizeHints, 18);
    if (!options.type.empty()) {
        const auto type = atom(options.type);
        setProperty("_NET_WM_WINDOW_TYPE", "ATOM", 32, &type, 1);
    }
    if (options.transientFor) {
        setProperty("WM_TRANSIENT_FOR", "WINDOW", 32, &*options.transientFor, 1);
    }
    if (!options.states.empty()) {
        std::vector<xcb_atom_t> states;
        for (const auto& state : options.states) {
            states.push_back(atom(state));
        }
        setProperty("_NET_WM_STATE", "ATOM", 32, states.data(), static_cast<std::uint32_t>(states.size()));
    }
    xcb_map_window(connection_, window_);
    xcb_flush(connection_);
}

TestWindow::~TestWindow() {
    xcb_disconnect(connection_);
}

void TestWindow::setTitle(const std::string& title) {
    setProperty("_NET_WM_NAME", "UTF8_STRING", 8, title.data(), static_cast<std::uint32_t>(title.size()));
    xcb_flush(connection_);
}

void TestWindow::setProperty(const std::string& name, const std::string& type, std::uint8_t format, const void* data,
                             std::uint32_t count) {
    xcb_change_property(connection_, XCB_PROP_MODE_REPLACE, window_, atom(name), atom(type), format, count, data);
    xcb_flush(connection_);
}

void TestWindow::unmap() {
    xcb_unmap_window(connection_, window_);
    xcb_flush(connection_);
}

void TestWindow::destroy() {
    xcb_destroy_window(connection_, window_);
    xcb_flush(connection_);
}

TestWindow::Input TestWindow::takeInput() {
    // The server sends the events of earlier keys before this reply.
    const XcbReply<xcb_get_input_focus_reply_t> synchronised(
        xcb_get_input_focus_reply(connection_, xcb_get_input_focus(connection_), nullptr));
    Input input;
    while (const XcbReply<xcb_generic_event_t> event{xcb_poll_for_event(connection_)}) {
        switch (event->response_type & 0x7FU) {
            case XCB_KEY_PRESS:
                input.keyPresses.push_back(reinterpret_cast<const xcb_key_press_event_t*>(event.get())->detail);
                break;
            case XCB_KEY_RELEASE:
                input.keyReleases.push_back(reinterpret_cast<const xcb_key_release_event_t*>(event.get())->detail);
                break;
            case XCB_BUTTON_PRESS:
                ++input.buttonPresses;
                break;
            default:
                break;
        }
    }
    return input;
}

bool TestWindow::waitForButtonPress(milliseconds budget) {
    return waitForInput([](const Input& input) { return input.buttonPresses > 0; }, budget);
}

bool TestWindow::waitForKeyPress(std::uint8_t keyCode, milliseconds budget) {
    return waitForInput(
        [keyCode](const Input& input) {
            return std::find(input.keyPresses.begin(), input.keyPresses.end(), keyCode) != input.keyPresses.end();
        },
        budget);
}

bool TestWindow::waitForInput(const std::function<bool(const Input&)>& isIt, milliseconds budget) {
    const Deadline deadline(budget);
    while (!isIt(takeInput())) {
        pollfd waiting{xcb_get_file_descriptor(connection_), POLLIN, 0};
        if (poll(&waiting, 1, deadline.remainingMilliseconds()) <= 0) {
            return isIt(takeInput());
        }
    }
    return true;
}

xcb_atom_t TestWindow::atom(const std::string& name) const {
    const auto cookie = xcb_intern_atom(connection_, 0, static_cast<std::uint16_t>(name.size()), name.c_str());
    const XcbReply<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(connection_, cookie, nullptr));
    return reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
}

}  // namespace ferrowyn::x11test

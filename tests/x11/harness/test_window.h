#pragma once

#include <xcb/xcb.h>

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "tests/x11/harness/child_process.h"

namespace ferrowyn::x11test {

/// A client window with a separate connection, like an application's window.
class TestWindow {
public:
    struct Options {
        std::string title = "Window";
        /// Both the instance and the class of WM_CLASS.
        std::string className = "TestApp";
        std::optional<std::uint32_t> pid;
        int x = 100;
        int y = 100;
        int width = 400;
        int height = 300;
        /// "_NET_WM_WINDOW_TYPE_…"; no type when empty.
        std::string type;
        std::optional<xcb_window_t> transientFor;
        /// "_NET_WM_STATE_…", set before the window is mapped.
        std::vector<std::string> states;
        bool overrideRedirect = false;
        std::uint32_t colour = 0x4477AA;
    };

    TestWindow(const std::string& display, const Options& options);
    ~TestWindow();
    TestWindow(const TestWindow&) = delete;
    TestWindow& operator=(const TestWindow&) = delete;

    [[nodiscard]] xcb_window_t id() const { return window_; }
    [[nodiscard]] xcb_connection_t* connection() const { return connection_; }
    void setTitle(const std::string& title);
    /// Sets any property to raw data.
    void setProperty(const std::string& name, const std::string& type, std::uint8_t format, const void* data,
                     std::uint32_t count);
    void unmap();
    void destroy();
    /// The input events that a window has received.
    struct Input {
        std::vector<std::uint8_t> keyPresses;
        std::vector<std::uint8_t> keyReleases;
        int buttonPresses = 0;
    };
    /// The input since the last call. One round trip, so that earlier events have arrived.
    [[nodiscard]] Input takeInput();
    /// Waits until this window gets a button press. Discards all input until then.
    [[nodiscard]] bool waitForButtonPress(milliseconds budget = patience);
    /// Waits until this window gets the press of this key. Discards all input until then.
    [[nodiscard]] bool waitForKeyPress(std::uint8_t keyCode, milliseconds budget = patience);

private:
    [[nodiscard]] bool waitForInput(const std::function<bool(const Input&)>& isIt, milliseconds budget);
    [[nodiscard]] xcb_atom_t atom(const std::string& name) const;

    xcb_connection_t* connection_;
    xcb_window_t window_ = XCB_WINDOW_NONE;
};

}  // namespace ferrowyn::x11test

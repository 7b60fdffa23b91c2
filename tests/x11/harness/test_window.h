#pragma once

#include <xcb/xcb.h>

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "tests/x11/harness/child_process.h"

namespace ferrowyn::x11test {

/// A real client window with its own connection, as an application opens one.
class TestWindow {
public:
    struct Options {
        std::string title = "Window";
        /// WM_CLASS, instance and class alike.
        std::string className = "TestApp";
        std::optional<std::uint32_t> pid;
        int x = 100;
        int y = 100;
        int width = 400;
        int height = 300;
        /// "_NET_WM_WINDOW_TYPE_…"; none when empty.
        std::string type;
        std::optional<xcb_window_t> transientFor;
        /// "_NET_WM_STATE_…" before mapping.
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
    /// Any property, raw.
    void setProperty(const std::string& name, const std::string& type, std::uint8_t format, const void* data,
                     std::uint32_t count);
    void unmap();
    void destroy();
    /// How many key presses and button presses reached this window since the last call; reads what has arrived.
    struct Input {
        std::vector<std::uint8_t> keyPresses;
        std::vector<std::uint8_t> keyReleases;
        int buttonPresses = 0;
    };
    [[nodiscard]] Input takeInput();
    /// Waits until a button press has reached this window; forgets the input before it.
    [[nodiscard]] bool waitForButtonPress(milliseconds budget = patience);
    /// The same for the press of a key.
    [[nodiscard]] bool waitForKeyPress(std::uint8_t keyCode, milliseconds budget = patience);

private:
    [[nodiscard]] bool waitForInput(const std::function<bool(const Input&)>& isIt, milliseconds budget);
    [[nodiscard]] xcb_atom_t atom(const std::string& name) const;

    xcb_connection_t* connection_;
    xcb_window_t window_ = XCB_WINDOW_NONE;
};

}  // namespace ferrowyn::x11test

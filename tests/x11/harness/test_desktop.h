#pragma once

#include <xcb/xcb.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "tests/x11/harness/child_process.h"

namespace ferrowyn::x11test {

/// Observes a display from outside: which window is active, what is on the screen. Has a separate connection.
class TestDesktop {
public:
    explicit TestDesktop(const std::string& display);
    ~TestDesktop();
    TestDesktop(const TestDesktop&) = delete;
    TestDesktop& operator=(const TestDesktop&) = delete;

    [[nodiscard]] xcb_connection_t* connection() const { return connection_; }
    [[nodiscard]] xcb_window_t root() const { return screen_->root; }
    [[nodiscard]] xcb_screen_t* screen() const { return screen_; }
    [[nodiscard]] xcb_atom_t atom(const std::string& name) const;

    /// Waits until the predicate holds; false at the deadline. Checks it after each event about the root window, its
    /// children, a watched window, the screen's content or the keyboard.
    [[nodiscard]] bool waitUntil(const std::function<bool()>& predicate, milliseconds budget = patience);
    /// Makes `waitUntil` check its predicate also after property changes of this window.
    void watchProperties(xcb_window_t window);

    [[nodiscard]] std::vector<std::uint32_t> cardinals(xcb_window_t window, const std::string& property) const;
    [[nodiscard]] std::string text(xcb_window_t window, const std::string& property) const;
    /// The running manager's check window: the root names it and it names itself. nullopt without a manager.
    [[nodiscard]] std::optional<xcb_window_t> windowManagerCheckWindow() const;
    [[nodiscard]] xcb_window_t activeWindow() const;
    [[nodiscard]] bool waitForActiveWindow(xcb_window_t window, milliseconds budget = patience);
    /// Waits until the window has the input focus. Some managers set the active window a little earlier.
    [[nodiscard]] bool waitForFocus(xcb_window_t window, milliseconds budget = patience);
    [[nodiscard]] std::vector<std::uint32_t> clientList() const;
    [[nodiscard]] bool hasState(xcb_window_t window, const std::string& state) const;
    [[nodiscard]] std::uint32_t currentDesktop() const;

    /// Asks the manager to activate the window, as a pager does, with the server's present time. A slow manager would
    /// take a request without a time as newer than keys that were pressed after it.
    void activate(xcb_window_t window);
    void setState(xcb_window_t window, const std::string& state, bool isOn);
    void moveToDesktop(xcb_window_t window, std::uint32_t desktop);
    void setCurrentDesktop(std::uint32_t desktop);
    void setDesktopCount(std::uint32_t count);
    void iconify(xcb_window_t window);

    /// A rectangle on the screen, in pixels.
    struct Place {
        int x = 0;
        int y = 0;
        int width = 0;
        int height = 0;
        friend bool operator==(const Place&, const Place&) = default;
    };
    /// nullopt when the window is gone.
    [[nodiscard]] std::optional<Place> placeOf(xcb_window_t window) const;
    [[nodiscard]] bool isViewable(xcb_window_t window) const;
    /// The viewable window with this title among those that the manager lists.
    [[nodiscard]] std::optional<xcb_window_t> windowTitled(const std::string& title) const;
    /// All visible top-level windows, panels and popups included.
    [[nodiscard]] std::set<xcb_window_t> shownTopLevels() const;
    /// The switcher's panel: a visible override-redirect window of the class "ferrowyn".
    [[nodiscard]] std::optional<xcb_window_t> visiblePanel() const;
    [[nodiscard]] bool waitForPanel(bool isVisible, milliseconds budget = patience);

    /// The colour on the screen, 0xRRGGBB.
    [[nodiscard]] std::uint32_t pixel(int x, int y) const;
    /// The colours on the screen, 0xFFRRGGBB, in rows from the top; empty when the rectangle is not on the screen.
    [[nodiscard]] std::vector<std::uint32_t> pixels(const Place& place) const;
    /// Writes the screen's content to a PNG file.
    void screenshot(const std::string& path) const;

    /// Whether any key or modifier is down.
    [[nodiscard]] bool anyKeyIsDown() const;
    /// Grabs the keyboard and ungrabs it at once; false when another client has an active grab.
    [[nodiscard]] bool keyboardIsFree() const;
    [[nodiscard]] bool waitForFreeKeyboard(milliseconds budget = patience);
    /// Waits until no key is down and no client has an active grab of the keyboard.
    [[nodiscard]] bool waitForUntouchedKeyboard(milliseconds budget = patience);
    /// The server's present time, from a property event.
    [[nodiscard]] xcb_timestamp_t serverTime();

private:
    [[nodiscard]] bool isShown(xcb_window_t window) const;
    [[nodiscard]] bool isTopLevel(xcb_window_t window) const;
    void selectRawKeys() const;
    void sendToRoot(xcb_window_t window, const std::string& message, const std::vector<std::uint32_t>& data);

    xcb_connection_t* connection_;
    xcb_screen_t* screen_;
    /// Never shown. Changing its property causes an event with the server's time.
    xcb_window_t clock_;
};

/// The frame of the switcher's icon while a tray embeds it; nullopt when none does.
[[nodiscard]] std::optional<TestDesktop::Place> embeddedTrayIcon(const TestDesktop& desktop);

}  // namespace ferrowyn::x11test

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

/// Looks at a display from outside, as a person would: which window is active, what is on the screen. Has its own
/// connection.
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

    /// Waits until the predicate holds, looking again each time something changes on the root window, among its
    /// children, on a watched window, in a watched picture or at the keyboard; false at the deadline.
    [[nodiscard]] bool waitUntil(const std::function<bool()>& predicate, milliseconds budget = patience);
    /// Property changes of this window wake `waitUntil` too.
    void watchProperties(xcb_window_t window);

    [[nodiscard]] std::vector<std::uint32_t> cardinals(xcb_window_t window, const std::string& property) const;
    [[nodiscard]] std::string text(xcb_window_t window, const std::string& property) const;
    /// The window that shows that a manager runs, verified on that window itself.
    [[nodiscard]] std::optional<xcb_window_t> windowManagerCheckWindow() const;
    [[nodiscard]] xcb_window_t activeWindow() const;
    [[nodiscard]] bool waitForActiveWindow(xcb_window_t window, milliseconds budget = patience);
    /// Whether the server sends keys there; some managers say that a window is active a little before.
    [[nodiscard]] bool waitForFocus(xcb_window_t window, milliseconds budget = patience);
    [[nodiscard]] std::vector<std::uint32_t> clientList() const;
    [[nodiscard]] bool hasState(xcb_window_t window, const std::string& state) const;
    [[nodiscard]] std::uint32_t currentDesktop() const;

    /// Asks the manager, as a pager does that was clicked now. A request without a time counts from when the manager
    /// reads it, and a slow one then takes it for newer than keys that were pressed after it.
    void activate(xcb_window_t window);
    void setState(xcb_window_t window, const std::string& state, bool isOn);
    void moveToDesktop(xcb_window_t window, std::uint32_t desktop);
    void setCurrentDesktop(std::uint32_t desktop);
    void setDesktopCount(std::uint32_t count);
    void iconify(xcb_window_t window);

    /// Where a window is on the screen, in pixels; nothing when it is gone.
    struct Place {
        int x = 0;
        int y = 0;
        int width = 0;
        int height = 0;
        friend bool operator==(const Place&, const Place&) = default;
    };
    [[nodiscard]] std::optional<Place> placeOf(xcb_window_t window) const;
    [[nodiscard]] bool isViewable(xcb_window_t window) const;
    /// The window with this title on the screen, among those that the manager lists.
    [[nodiscard]] std::optional<xcb_window_t> windowTitled(const std::string& title) const;
    /// Every window that a person could see, except the ones inside others; panels and popups are among them.
    [[nodiscard]] std::set<xcb_window_t> shownTopLevels() const;
    /// The switcher's panel as it is on the screen: a visible override-redirect window of the class "ferrowyn".
    [[nodiscard]] std::optional<xcb_window_t> visiblePanel() const;
    [[nodiscard]] bool waitForPanel(bool isVisible, milliseconds budget = patience);

    /// 0xRRGGBB as it is on the screen.
    [[nodiscard]] std::uint32_t pixel(int x, int y) const;
    /// Rows from the top, 0xFFRRGGBB, as on the screen; empty when the rectangle is not on it.
    [[nodiscard]] std::vector<std::uint32_t> pixels(const Place& place) const;
    /// Writes what is on the screen to a PNG file.
    void screenshot(const std::string& path) const;

    /// Whether any key or modifier is down.
    [[nodiscard]] bool anyKeyIsDown() const;
    /// Whether this client could take the keyboard now (it gives it back at once): false when another holds it.
    [[nodiscard]] bool keyboardIsFree() const;
    [[nodiscard]] bool waitForFreeKeyboard(milliseconds budget = patience);
    /// Waits until no key is down and no client holds the keyboard.
    [[nodiscard]] bool waitForUntouchedKeyboard(milliseconds budget = patience);
    /// The server's clock, from an event that it stamps.
    [[nodiscard]] xcb_timestamp_t serverTime();

private:
    [[nodiscard]] bool isShown(xcb_window_t window) const;
    [[nodiscard]] bool isTopLevel(xcb_window_t window) const;
    void selectRawKeys() const;
    void sendToRoot(xcb_window_t window, const std::string& message, const std::vector<std::uint32_t>& data);

    xcb_connection_t* connection_;
    xcb_screen_t* screen_;
    /// Never shown; its property's changes tell the server's time.
    xcb_window_t clock_;
};

/// Where the switcher's icon is on the screen while a tray embeds it; nothing when none does.
[[nodiscard]] std::optional<TestDesktop::Place> embeddedTrayIcon(const TestDesktop& desktop);

}  // namespace ferrowyn::x11test

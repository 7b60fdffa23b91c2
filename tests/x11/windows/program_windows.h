#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "tests/ui/status_menu_model.h"
#include "tests/x11/switching/switching_desk.h"

namespace ferrowyn::x11test {

/// The program's own windows and its menu, used by mouse and seen from outside.
class ProgramWindows {
public:
    explicit ProgramWindows(SwitchingDesk& desk) : desk_(desk) {}

    /// Waits until this window is the active one, above all others and drawn: while it comes onto the screen, the
    /// program asks for it to be active once more, and would take it from another that was made active meanwhile.
    [[nodiscard]] std::optional<xcb_window_t> waitForActive(const std::string& title) const;
    [[nodiscard]] bool waitUntilGone(const std::string& title) const;

    /// Clicks on the icon that a tray embeds, and waits for the menu, as it is in this state; its place.
    [[nodiscard]] std::optional<TestDesktop::Place> openMenu(test::Health health = test::Health::ready) const;
    /// Clicks at this place of the screen and waits for the menu.
    [[nodiscard]] std::optional<TestDesktop::Place> openMenuAt(const TestDesktop::Place& icon,
                                                               test::Health health = test::Health::ready) const;
    /// Waits until the menu on the screen is as high as one in this state, and can be used.
    [[nodiscard]] std::optional<TestDesktop::Place> waitForMenu(test::Health health) const;
    /// Opens the menu and clicks on the row with this title.
    [[nodiscard]] bool choose(const std::string& row) const;
    /// Clicks on a row of the menu that is open, at this place.
    void clickRow(const TestDesktop::Place& menu, const std::string& row,
                  test::Health health = test::Health::ready) const;

    /// Whether the window shows the mark of a thing that is right, and no mark of one that is wrong.
    [[nodiscard]] bool showsAllRight(xcb_window_t window) const { return shows(window, Mark::success); }
    /// Whether the window shows the mark of a thing that is wrong, and no mark of one that is right.
    [[nodiscard]] bool showsWarning(xcb_window_t window) const { return shows(window, Mark::warning); }

    /// Uses the second of two windows after the first, switches back by the shortcut, and looks what became of it.
    void expectSwitching() const;

private:
    enum class Mark { none, success, warning, both };

    [[nodiscard]] bool isDrawn(xcb_window_t window) const;
    [[nodiscard]] bool shows(xcb_window_t window, Mark mark) const;

    SwitchingDesk& desk_;
};

}  // namespace ferrowyn::x11test

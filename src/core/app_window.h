#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <limits>
#include <optional>
#include <string>
#include <string_view>

#include "core/ax_element_ref.h"
#include "core/geometry.h"
#include "core/identifiers.h"

namespace ferrowyn {

/// The `zOrder` of a window that the window server does not list: behind every listed one.
inline constexpr std::int64_t unlistedZOrder = std::numeric_limits<std::int64_t>::max();

/// A dialog that must be answered before the window that it blocks takes input again.
struct ModalDialog {
    WindowId id = 0;
    AXElementRef element;
    Pid pid = 0;

    friend bool operator==(const ModalDialog&, const ModalDialog&) = default;
};

/// One switchable window. A plain value, immutable by habit, safe to hand between threads.
struct AppWindow {
    WindowId id = 0;
    /// Absent when the window could not be matched to an element.
    std::optional<AXElementRef> axElement;
    Pid pid = 0;
    /// Absent for a process that belongs to no installed application.
    std::optional<std::string> bundleIdentifier;
    std::string appName;
    /// As reported: may be empty or blank. UTF-8.
    std::string title;
    bool isMinimized = false;
    bool isFullScreen = false;
    bool isOnActiveSpace = false;
    bool isAppFocusedWindow = false;
    /// Global coordinates in points, y growing downward, as the window server gives them.
    Rect frame;
    /// Position in the window server's front-to-back order, 0 in front; `unlistedZOrder` when it is not listed.
    std::int64_t zOrder = 0;
    /// Where the owning application is installed: an absolute path (a bundle on macOS, a desktop file elsewhere).
    std::optional<std::string> bundleURL;
    /// The dialog that blocks this window; of several on top of each other the one that takes input now. Absent where
    /// the desktop does not tell.
    std::optional<ModalDialog> blockedBy;

    /// The window that gets the keyboard when this one is activated: itself, or the dialog that blocks it.
    [[nodiscard]] WindowId inputWindowId() const { return blockedBy ? blockedBy->id : id; }

    /// The title without surrounding white space and newlines, or the application's name when nothing is left.
    [[nodiscard]] std::string displayTitle() const { return std::string(displayTitleView()); }
    /// The same without a copy: a view into this value's own fields.
    [[nodiscard]] std::string_view displayTitleView() const;

    /// Deliberately narrower than all fields: a window that merely moved, or whose application changed its focused
    /// window, is the same to whoever decides whether a refreshed list must be published.
    friend bool operator==(const AppWindow& a, const AppWindow& b) {
        return a.id == b.id && a.pid == b.pid && a.title == b.title && a.isMinimized == b.isMinimized &&
               a.isFullScreen == b.isFullScreen && a.isOnActiveSpace == b.isOnActiveSpace && a.zOrder == b.zOrder;
    }
};

}  // namespace ferrowyn

/// Combines `id`, then `pid`, and nothing else.
template <>
struct std::hash<ferrowyn::AppWindow> {
    std::size_t operator()(const ferrowyn::AppWindow& window) const noexcept;
};

#pragma once

#include <xcb/xcb.h>

#include <cstdint>
#include <optional>
#include <span>
#include <string>

#include "core/app_window.h"
#include "core/geometry.h"
#include "platform/x11/x11_application_identity.h"
#include "platform/x11/x11_atoms.h"

namespace ferrowyn {

/// What a window is to the user, as its type says.
enum class X11WindowKind {
    normal,
    dialog,
    desktop,
    dock,
    /// Toolbars, palettes, splash screens: windows of their own, but not ones to switch to.
    auxiliary,
    /// Menus, tooltips, notifications: above everything and soon gone.
    transitory,
};

/// One client window as its properties describe it.
struct X11WindowFacts {
    xcb_window_t id = XCB_WINDOW_NONE;
    /// The owner's process, or a number that stands for a client without one (`X11Owners`).
    Pid process = 0;
    /// The number of the application, which may be several processes or share one (`X11ApplicationDirectory`). Given
    /// when all windows are known, not when this one is read.
    Pid pid = 0;
    X11WindowKind kind = X11WindowKind::normal;
    /// Belongs to another window, as a dialog does.
    bool isTransient = false;
    /// The window that it belongs to: the root window where it belongs to all of its group, none where it does not say.
    xcb_window_t transientFor = XCB_WINDOW_NONE;
    /// The window that stands for the group of windows that this one is part of.
    xcb_window_t group = XCB_WINDOW_NONE;
    /// Takes the input of the window that it belongs to, or of its whole group.
    bool isModal = false;
    bool skipsTaskbar = false;
    bool isHidden = false;
    bool isFullScreen = false;
    bool isAlwaysOnTop = false;
    bool isMapped = false;
    /// Absent where the manager has no desktops; `onAllDesktops` for a sticky window.
    std::optional<std::uint32_t> desktop;
    /// 0 to 1; absent when the window does not say.
    std::optional<double> opacity;
    /// Device pixels in root coordinates; absent when the window vanished while it was asked.
    std::optional<Rect> frame;
    std::string title;
    X11ApplicationIdentity identity;

    static constexpr std::uint32_t onAllDesktops = 0xFFFFFFFF;

    [[nodiscard]] bool isDesktopElement() const {
        return kind == X11WindowKind::desktop || kind == X11WindowKind::dock;
    }
    /// Whether the window is on this desktop; true where there are no desktops.
    [[nodiscard]] bool isOnDesktop(std::optional<std::uint32_t> current) const {
        return !desktop || !current || *desktop == onAllDesktops || *desktop == *current;
    }
};

/// The kind that the type property asks for: the first type in the list that is known, else what being transient says.
[[nodiscard]] X11WindowKind windowKind(std::span<const std::uint32_t> types, bool isTransient, const X11Atoms& atoms);

/// "AXStandardWindow", "AXDialog", or another subrole for what a user does not switch to.
[[nodiscard]] std::string subroleOf(const X11WindowFacts& window);

/// 0 for windows to switch to, "always on top" ones included: the user still wants to reach those.
[[nodiscard]] std::int64_t layerOf(const X11WindowFacts& window);

/// Shown on the desktop in front of the user.
[[nodiscard]] bool isOnScreen(const X11WindowFacts& window, std::optional<std::uint32_t> currentDesktop);

}  // namespace ferrowyn

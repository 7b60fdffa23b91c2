#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "core/app_window.h"
#include "core/geometry.h"

namespace ferrowyn {

/// A window as a test opens it, with what the window server and its application say about it.
struct SimulatedWindowState {
    WindowId id = 0;
    Pid pid = 0;
    std::string title;
    std::optional<std::string> subrole = "AXStandardWindow";
    Rect frame{100, 100, 800, 600};
    bool isMinimized = false;
    bool isFullScreen = false;
    bool isOnActiveSpace = true;
    /// What the window server says, or keeps to itself.
    std::optional<double> alpha = 1.0;
    std::optional<std::int64_t> layer = 0;
    std::optional<Rect> serverBounds;  ///< the frame when absent
    bool isListedByWindowServer = true;
    bool isListedByAccessibility = true;
    bool hasWindowNumber = true;
    bool hasAccessibilityFrame = true;
    /// What the element-to-window-number lookup answers instead of the id, for an application that lies about it.
    std::optional<WindowId> reportedWindowNumber = std::nullopt;
    /// Answers of an application whose main window and focused window are not the same: false whatever has the focus.
    bool deniesBeingMain = false;
    bool deniesBeingFocused = false;
    /// The modal dialog that takes its input. What is done to the window then is still done to the window itself.
    std::optional<WindowId> blockedBy = std::nullopt;
};

}  // namespace ferrowyn

#pragma once

#include <xcb/xcb.h>

#include <optional>
#include <string_view>

#include "core/app_window.h"

namespace ferrowyn {

/// Something that happened to an application or to one of its windows, in the terms of the Accessibility notifications.
struct X11AccessibilityNotification {
    Pid pid = 0;
    /// Absent for what the application itself announces.
    std::optional<xcb_window_t> window;
    std::string_view name;
};

}  // namespace ferrowyn

#pragma once

#include <string>
#include <utility>

#include "core/app_window.h"

namespace ferrowyn {

/// A window of which a test names only what it is about.
inline AppWindow testWindow(WindowId id, std::int64_t zOrder, Pid pid = 100, std::string appName = "Mail") {
    AppWindow window;
    window.id = id;
    window.pid = pid;
    window.appName = std::move(appName);
    window.zOrder = zOrder;
    return window;
}

}  // namespace ferrowyn

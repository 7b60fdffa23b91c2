#pragma once

#include <string>
#include <utility>

#include "core/app_window.h"

namespace ferrowyn {

/// An ordinary window on the active Space; tests change what they are about.
inline AppWindow testWindow(WindowId id, std::string title, std::string appName = "App", Pid pid = 100) {
    AppWindow window;
    window.id = id;
    window.pid = pid;
    window.bundleIdentifier = "org.example." + appName;
    window.appName = std::move(appName);
    window.title = std::move(title);
    window.isOnActiveSpace = true;
    window.frame = {10, 20, 640, 480};
    window.zOrder = id;
    return window;
}

}  // namespace ferrowyn

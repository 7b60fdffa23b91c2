#include "main/demo_desktop.h"

#include <string>

#include "platform/simulated/simulated_desktop.h"

namespace ferrowyn {

namespace {

void launch(SimulatedDesktop& desktop, Pid pid, const std::string& name) {
    desktop.launch({.pid = pid,
                    .bundleIdentifier = "org.example." + name,
                    .localizedName = name,
                    .bundleURL = "/usr/share/applications/org.example." + name + ".desktop"});
}

}  // namespace

void openDemoWindows(SimulatedDesktop& desktop) {
    launch(desktop, 101, "Terminal");
    launch(desktop, 102, "Browser");
    launch(desktop, 103, "Editor");
    desktop.openWindow({.id = 1, .pid = 101, .title = "build: ~/src/ferrowyn"});
    desktop.openWindow({.id = 2, .pid = 101, .title = "ssh larkmoor"});
    desktop.openWindow({.id = 3, .pid = 102, .title = "News"});
    desktop.openWindow({.id = 4, .pid = 102, .title = "Weather", .isOnActiveSpace = false});
    desktop.openWindow({.id = 5, .pid = 103, .title = "notes.txt", .isMinimized = true});
    desktop.openWindow({.id = 6, .pid = 103, .title = "letter.txt"});
    desktop.focusWindow(6);
    desktop.setTrusted(true);
}

}  // namespace ferrowyn

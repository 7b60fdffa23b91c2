#pragma once

#include <optional>

#include "tests/x11/harness/test_desktop.h"

namespace ferrowyn::x11test {

/// Where the switcher's icon is on the screen while a tray embeds it; nothing when none does.
[[nodiscard]] std::optional<TestDesktop::Place> embeddedTrayIcon(const TestDesktop& desktop);

}  // namespace ferrowyn::x11test

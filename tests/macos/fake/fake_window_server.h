#pragma once

#include <CoreGraphics/CoreGraphics.h>

#include <map>
#include <string>
#include <vector>

#include "tests/macos/fake/fake_core_foundation.h"

namespace ferrowyn::fake {

/// The scripted window server: its windows front to back, by the keys of the window list. Any thread may ask while no
/// test changes it.
class WindowServer {
public:
    struct Window {
        std::map<std::string, Value> keys;
        bool isOnActiveSpace = true;
        bool isDesktopElement = false;
    };

    [[nodiscard]] static WindowServer& shared();
    void reset() { *this = WindowServer(); }

    std::vector<Window> windows;
    /// What takes the place of a window's dictionary at this position of the list, such as a string.
    std::map<std::size_t, Value> intruders;
    bool isSilent = false;
    /// It answers with a text instead of a list.
    bool answersWithText = false;
    std::vector<CGWindowListOption> options;
};

}  // namespace ferrowyn::fake

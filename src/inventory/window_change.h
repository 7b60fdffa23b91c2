#pragma once

#include "core/app_window.h"

namespace ferrowyn {

/// Something that makes the window list out of date.
struct WindowChange {
    enum class Kind {
        /// The focused or main window of an application changed, or the application was activated.
        focus,
        /// Windows may have appeared, gone, been minimised or restored, or moved between Spaces and screens.
        structural,
        /// A title changed; the set of windows is the same.
        metadata,
    };

    Kind kind = Kind::structural;
    /// The application of a focus change; 0 otherwise.
    Pid pid = 0;

    [[nodiscard]] static constexpr WindowChange focus(Pid pid) { return {Kind::focus, pid}; }
    [[nodiscard]] static constexpr WindowChange structural() { return {Kind::structural, 0}; }
    [[nodiscard]] static constexpr WindowChange metadata() { return {Kind::metadata, 0}; }

    friend bool operator==(const WindowChange&, const WindowChange&) = default;
};

}  // namespace ferrowyn

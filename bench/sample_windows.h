#pragma once

#include <cstddef>
#include <vector>

#include "core/app_window.h"

namespace ferrowyn {

/// Windows as a busy desktop has them: a few dozen applications, titles of the usual lengths. Every one differs.
[[nodiscard]] std::vector<AppWindow> asciiWindows(std::size_t count);
/// The same with titles of many languages among them; half of all titles are not ASCII.
[[nodiscard]] std::vector<AppWindow> mixedWindows(std::size_t count);

}  // namespace ferrowyn

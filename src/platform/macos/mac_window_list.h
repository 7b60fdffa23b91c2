#pragma once

#include <CoreGraphics/CoreGraphics.h>

#include <optional>
#include <unordered_set>
#include <vector>

#include "core/app_window.h"
#include "platform/window_inventory.h"

/// The window server's list. Each call asks the server. Any thread.
namespace ferrowyn::window_list {

/// All windows of all Spaces without desktop elements, front-most first; nothing when the server does not answer. An
/// entry that is none of what is expected keeps its place and says nothing.
[[nodiscard]] std::optional<std::vector<WindowServerEntry>> read();
/// The numbers alone of the same list.
[[nodiscard]] std::optional<std::vector<std::optional<WindowId>>> readOrder();
/// The windows of the active Space; empty when the server does not answer.
[[nodiscard]] std::unordered_set<WindowId> readOnScreenIds();

}  // namespace ferrowyn::window_list

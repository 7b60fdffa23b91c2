#pragma once

#include <memory>
#include <string_view>

#include "platform/icon_source.h"

namespace ferrowyn {

/// The icon with this name in the user's icon theme, its fallbacks and the pixmaps folders, or in this file when the
/// name is an absolute path; null when there is none. Main thread, with a QGuiApplication. The first call finds out
/// which theme the user has.
[[nodiscard]] std::shared_ptr<const IconImage> themeIcon(std::string_view nameOrPath);

}  // namespace ferrowyn

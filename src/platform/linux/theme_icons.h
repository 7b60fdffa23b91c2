#pragma once

#include <memory>
#include <string_view>

#include "platform/icon_source.h"

namespace ferrowyn {

/// Loads the icon with this name from the user's icon theme, its fallback themes or the pixmaps folders. An absolute
/// path is loaded as a file. Null when there is none. The first call chooses the theme. Needs a QGuiApplication. Main
/// thread.
[[nodiscard]] std::shared_ptr<const IconImage> themeIcon(std::string_view nameOrPath);

}  // namespace ferrowyn

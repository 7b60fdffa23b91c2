#pragma once

#include <QColor>
#include <QImage>
#include <functional>
#include <optional>
#include <string>

namespace ferrowyn {

/// Draws one of the program's symbols as a square icon; `side` is in pixels. `color` is the tray's colour; when it is
/// absent the drawing must be visible on any background. Main thread.
using TraySymbolPainter =
    std::function<QImage(const std::string& symbol, int side, const std::optional<QColor>& color)>;

}  // namespace ferrowyn

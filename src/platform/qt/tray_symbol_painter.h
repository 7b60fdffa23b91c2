#pragma once

#include <QColor>
#include <QImage>
#include <functional>
#include <optional>
#include <string>

namespace ferrowyn {

/// Draws one of the program's symbols as an icon with sides of so many pixels. The colour is the tray's own where it
/// names one; otherwise the drawing must do on any ground. Main thread.
using TraySymbolPainter =
    std::function<QImage(const std::string& symbol, int side, const std::optional<QColor>& color)>;

}  // namespace ferrowyn

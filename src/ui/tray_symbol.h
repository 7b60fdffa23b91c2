#pragma once

#include <QColor>
#include <QImage>
#include <optional>
#include <string>

namespace ferrowyn {

/// One of the program's drawings as an icon for a tray. Without a colour it has the one of text in the desktop's
/// windows, with a faint rim in the opposite one: a tray may be dark where windows are light, and does not say so. Main
/// thread.
[[nodiscard]] QImage traySymbol(const std::string& symbol, int side, const std::optional<QColor>& color);

}  // namespace ferrowyn

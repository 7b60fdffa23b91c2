#pragma once

#include <QRectF>
#include <cmath>

#include "core/geometry.h"
#include "core/texts.h"
#include "ui/common/images.h"
#include "ui/common/text_line.h"
#include "ui/common/theme.h"

namespace ferrowyn {

/// What the parts of the panel and of the menu paint with. The caches belong to the view that paints. Main thread.
struct PaintContext {
    const Theme& theme;
    const TextTable& texts;
    TextLines& lines;
    SymbolImages& symbols;
    IconImages& icons;
    double devicePixelRatio = 1;
    /// Whether the user's language runs from right to left. The menu is mirrored then; the panel never is.
    bool isRightToLeft = false;

    /// The nearest edge of a device pixel, in points.
    [[nodiscard]] double snapped(double edge) const { return std::round(edge * devicePixelRatio) / devicePixelRatio; }
};

[[nodiscard]] inline QRectF toQt(const Rect& rect) {
    return {rect.x, rect.y, rect.width, rect.height};
}
[[nodiscard]] inline Rect fromQt(const QRectF& rect) {
    return {rect.x(), rect.y(), rect.width(), rect.height()};
}

}  // namespace ferrowyn

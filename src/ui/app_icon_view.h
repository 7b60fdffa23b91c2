#pragma once

#include <memory>

#include "platform/icon_source.h"
#include "ui/paint_context.h"

class QPainter;

namespace ferrowyn {

/// An application's icon, centred in its rectangle. A plain value.
struct AppIconView {
    std::shared_ptr<const IconImage> icon;
    /// The side, in points.
    double size = 32;
    /// For a window that is put away.
    bool isDimmed = false;

    void paint(QPainter& painter, const Rect& rect, const PaintContext& context) const;
};

}  // namespace ferrowyn

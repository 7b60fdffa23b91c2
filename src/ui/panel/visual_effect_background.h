#pragma once

#include "ui/common/paint_context.h"

class QPainter;

namespace ferrowyn {

/// The background of the panel, with its outline. It always looks active, although the panel never is. A plain value.
struct VisualEffectBackground {
    static constexpr double cornerRadius = 14;

    enum class Material { panel };
    enum class BlendingMode {
        /// With the desktop behind the panel: translucent, with round corners. Needs a compositor.
        behindWindow,
        /// With nothing: opaque, with square corners.
        withinWindow,
    };

    Material material = Material::panel;
    BlendingMode blendingMode = BlendingMode::withinWindow;

    /// Replaces all pixels, including those outside the round corners.
    void paint(QPainter& painter, const Rect& rect, const PaintContext& context) const;
    /// To be painted last, so that no row covers it.
    void paintOutline(QPainter& painter, const Rect& rect, const PaintContext& context) const;
};

}  // namespace ferrowyn

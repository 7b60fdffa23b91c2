#pragma once

#include "ui/common/paint_context.h"

class QPainter;

namespace ferrowyn {

/// The material behind the whole content, with its outline. It always looks active: the panel never is. A plain value.
struct VisualEffectBackground {
    static constexpr double cornerRadius = 14;

    enum class Material { panel };
    enum class BlendingMode {
        /// With the desktop behind the panel: translucent, with round corners. Needs a compositor.
        behindWindow,
        /// With nothing: opaque, to the corners.
        withinWindow,
    };

    Material material = Material::panel;
    BlendingMode blendingMode = BlendingMode::withinWindow;

    /// Replaces whatever was there, the pixels outside the round corners included.
    void paint(QPainter& painter, const Rect& rect, const PaintContext& context) const;
    /// Over everything else, so that no row lies on it.
    void paintOutline(QPainter& painter, const Rect& rect, const PaintContext& context) const;
};

}  // namespace ferrowyn

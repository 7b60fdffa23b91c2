#pragma once

#include "core/window_presentation.h"
#include "ui/paint_context.h"

class QPainter;

namespace ferrowyn {

/// The body without rows. A plain value.
struct EmptyStateView {
    WindowPresentation::EmptyState state;

    void paint(QPainter& painter, const Rect& rect, const PaintContext& context) const;
};

}  // namespace ferrowyn

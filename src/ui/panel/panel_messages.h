#pragma once

#include "core/window_presentation.h"
#include "ui/common/paint_context.h"

class QPainter;

namespace ferrowyn {

/// What the panel shows instead of rows when there are none. A plain value.
struct EmptyStateView {
    WindowPresentation::EmptyState state;

    void paint(QPainter& painter, const Rect& rect, const PaintContext& context) const;
};

/// What the panel shows instead of rows while this program is not trusted: what is missing, and a button that asks for
/// it. A plain value.
struct PermissionStateView {
    bool isButtonHovered = false;
    bool isButtonPressed = false;

    void paint(QPainter& painter, const Rect& rect, const PaintContext& context) const;
    [[nodiscard]] static Rect button(const Rect& rect, const PaintContext& context);

private:
    void paintButton(QPainter& painter, const Rect& button, const PaintContext& context) const;
};

}  // namespace ferrowyn

#pragma once

#include <string_view>
#include <vector>

#include "core/window_presentation.h"
#include "ui/common/paint_context.h"

class QPainter;

namespace ferrowyn {

/// The strip of key hints below the rows. A plain value.
struct FooterView {
    std::vector<WindowPresentation::ShortcutHint> hints;
    /// At the right end; may be empty.
    std::string_view note;

    void paint(QPainter& painter, const Rect& rect, const PaintContext& context) const;
};

}  // namespace ferrowyn

#include "ui/panel/footer_view.h"

#include <QPainter>
#include <cmath>

#include "ui/common/colors.h"
#include "ui/common/display_text.h"
#include "ui/panel/row_parts.h"

namespace ferrowyn {

namespace {

constexpr double betweenHints = 18;
constexpr double betweenCaps = 3;
constexpr double beforeLabel = 7;
constexpr double besideNote = 20;

double width(const WindowPresentation::ShortcutHint& hint, const PaintContext& context) {
    double sum = 0;
    for (const auto& key : hint.keys) {
        sum += KeyCapView{display_text::singleLine(key)}.width(context) + betweenCaps;
    }
    const QString label = display_text::singleLine(hint.label);
    return sum - betweenCaps + beforeLabel +
           context.lines.line(label, TextStyle::hint, TextLine::unlimitedWidth).width();
}

}  // namespace

void FooterView::paint(QPainter& painter, const Rect& rect, const PaintContext& context) const {
    const double scale = context.devicePixelRatio;
    // Aligned to a device pixel; otherwise it would be two faint lines.
    const double top = context.snapped(rect.y);
    painter.fillRect(QRectF(rect.x, top, rect.width, hairline::width(scale)), context.theme.hairline);
    double total = -betweenHints;
    for (const auto& hint : hints) {
        total += betweenHints + width(hint, context);
    }
    double x = std::round(rect.midX() - total / 2);
    const double baseline = context.lines.centredBaseline(TextStyle::hint, rect.y, rect.height, scale);
    if (!note.empty()) {
        const TextLine& line =
            context.lines.line(display_text::singleLine(note), TextStyle::hint, TextLine::unlimitedWidth);
        const double noteX = std::round(rect.maxX() - besideNote - line.width());
        line.paint(painter, noteX, baseline, context.theme.textSecondary);
        // The hints are centred, but move left when the note needs the room.
        x = std::min(x, std::round(noteX - besideNote - total));
    }
    for (const auto& hint : hints) {
        for (const auto& key : hint.keys) {
            const KeyCapView cap{display_text::singleLine(key)};
            const double capWidth = cap.width(context);
            cap.paint(painter, {x, rect.y, capWidth, rect.height}, context);
            x += capWidth + betweenCaps;
        }
        x += beforeLabel - betweenCaps;
        const TextLine& label =
            context.lines.line(display_text::singleLine(hint.label), TextStyle::hint, TextLine::unlimitedWidth);
        label.paint(painter, x, baseline, context.theme.textSecondary);
        x += label.width() + betweenHints;
    }
}

}  // namespace ferrowyn

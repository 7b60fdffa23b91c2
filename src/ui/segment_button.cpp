#include "ui/segment_button.h"

#include <QEvent>
#include <QPainter>
#include <algorithm>

#include "ui/control_painting.h"
#include "ui/text_style.h"
#include "ui/translated.h"

namespace ferrowyn {

namespace {

constexpr int controlHeight = 58;
constexpr int usualWidth = 96;
constexpr int padding = 14;
constexpr double cornerRadius = 7;
constexpr double symbolPoints = 17;
constexpr double symbolCentre = 21;
constexpr double titleTop = 33;
constexpr double titleHeight = 20;

}  // namespace

SegmentButton::SegmentButton(std::string_view symbol, const Phrase& title)
    : QRadioButton(translated(title)), symbol_(symbol) {
    setFont(fontFor(TextStyle::button));
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    setAttribute(Qt::WA_Hover);
}

QSize SegmentButton::sizeHint() const {
    return {std::max(fontMetrics().horizontalAdvance(text()) + 2 * padding, usualWidth),
            controlHeight + static_cast<int>(std::max(fontMetrics().height() - titleHeight, 0.0))};
}

QSize SegmentButton::minimumSizeHint() const {
    constexpr int narrowestPadding = 8;
    return {fontMetrics().horizontalAdvance(text()) + 2 * narrowestPadding, sizeHint().height()};
}

bool SegmentButton::event(QEvent* event) {
    const bool isHandled = QRadioButton::event(event);
    if (event->type() == QEvent::ApplicationFontChange) {
        setFont(fontFor(TextStyle::button));
        updateGeometry();
    }
    return isHandled;
}

void SegmentButton::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const WindowTheme theme = WindowTheme::current();
    QColor fill = isChecked() ? theme.accent : theme.controlFill;
    if (isDown()) {
        fill = isChecked() ? theme.accentPressed : theme.controlFillPressed;
    } else if (underMouse() && !isChecked()) {
        fill = theme.controlFillHovered;
    }
    control_painting::paintBox(painter, rect(), cornerRadius, fill, isChecked() ? fill : theme.controlEdge);
    const QColor ink = isChecked() ? theme.accentText : theme.textPrimary;
    symbols_.paint(painter, symbol_, width() / 2.0, symbolCentre, symbolPoints, ink, SymbolWeight::regular);
    painter.setFont(font());
    painter.setPen(ink);
    painter.drawText(QRectF(0, titleTop, width(), std::max(titleHeight, fontMetrics().height() + 0.0)),
                     Qt::AlignCenter | Qt::TextSingleLine, text());
    if (control_painting::showsFocus(*this)) {
        constexpr double inset = 4;
        WindowTheme ring = theme;
        ring.focusRing = isChecked() ? theme.accentText : theme.focusRing;
        control_painting::paintFocusRing(painter, QRectF(rect()).adjusted(inset, inset, -inset, -inset),
                                         cornerRadius - 3, ring);
    }
}

}  // namespace ferrowyn

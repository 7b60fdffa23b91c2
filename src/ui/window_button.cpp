#include "ui/window_button.h"

#include <QEvent>
#include <QPainter>

#include "ui/control_painting.h"
#include "ui/text_style.h"
#include "ui/translated.h"

namespace ferrowyn {

namespace {

constexpr int padding = 12;
constexpr double cornerRadius = 6;
constexpr int symbolButtonSide = 26;
constexpr double symbolPoints = 13;
constexpr double disabledOpacity = 0.45;

}  // namespace

WindowButton::WindowButton(const Phrase& text, Look look) : look_(look) {
    setText(translated(text));
    adopt();
}

WindowButton::WindowButton(const QString& name, std::string_view symbol) : symbol_(symbol) {
    setAccessibleName(name);
    setToolTip(name);
    adopt();
}

void WindowButton::adopt() {
    setFont(fontFor(look_ == Look::link ? TextStyle::body : TextStyle::button));
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    setAttribute(Qt::WA_Hover);
    // Return presses the focused button, as Space does.
    setAutoDefault(true);
    if (look_ == Look::link) {
        setCursor(Qt::PointingHandCursor);
    }
}

QSize WindowButton::sizeHint() const {
    if (!symbol_.empty()) {
        return {symbolButtonSide, symbolButtonSide};
    }
    const int textWidth = fontMetrics().horizontalAdvance(text()) + 1;
    return look_ == Look::link ? QSize(textWidth, fontMetrics().height() + 2)
                               : QSize(textWidth + 2 * padding, control_painting::controlHeight(fontMetrics()));
}

bool WindowButton::event(QEvent* event) {
    if (event->type() == QEvent::ApplicationFontChange) {
        const bool isHandled = QPushButton::event(event);
        adopt();
        updateGeometry();
        return isHandled;
    }
    return QPushButton::event(event);
}

void WindowButton::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    if (!isEnabled()) {
        painter.setOpacity(disabledOpacity);
    }
    const WindowTheme theme = WindowTheme::current();
    if (!symbol_.empty()) {
        paintSymbolButton(painter, theme);
    } else if (look_ == Look::link) {
        paintLink(painter, theme);
    } else {
        paintBoxedButton(painter, theme);
    }
}

void WindowButton::paintSymbolButton(QPainter& painter, const WindowTheme& theme) {
    constexpr double inset = 3;
    const QRectF shape = QRectF(rect()).adjusted(inset, inset, -inset, -inset);
    const bool isStressed = underMouse() || isDown();
    symbols_.paint(painter, symbol_, shape.center().x(), shape.center().y(), symbolPoints,
                   isStressed ? theme.textPrimary : theme.textSecondary);
    if (control_painting::showsFocus(*this)) {
        control_painting::paintFocusRing(painter, shape.adjusted(1, 1, -1, -1), shape.width() / 2, theme);
    }
}

void WindowButton::paintLink(QPainter& painter, const WindowTheme& theme) {
    QFont underlinable = font();
    underlinable.setUnderline(underMouse() || control_painting::showsFocus(*this));
    painter.setFont(underlinable);
    painter.setPen(isDown() ? theme.textPrimary : theme.link);
    painter.drawText(rect(), Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine, text());
}

void WindowButton::paintBoxedButton(QPainter& painter, const WindowTheme& theme) {
    const bool isPrimary = look_ == Look::primary;
    QColor fill = isPrimary ? theme.accent : theme.controlFill;
    if (isDown()) {
        fill = isPrimary ? theme.accentPressed : theme.controlFillPressed;
    } else if (underMouse() && isEnabled()) {
        fill = isPrimary ? theme.accentHovered : theme.controlFillHovered;
    }
    control_painting::paintBox(painter, rect(), cornerRadius, fill, isPrimary ? fill : theme.controlEdge);
    if (control_painting::showsFocus(*this)) {
        // Inside, so that buttons need no room around them; on the accent's own fill only white is seen.
        constexpr double inset = 4;
        WindowTheme ring = theme;
        ring.focusRing = isPrimary ? theme.accentText : theme.focusRing;
        control_painting::paintFocusRing(painter, QRectF(rect()).adjusted(inset, inset, -inset, -inset),
                                         cornerRadius - 3, ring);
    }
    painter.setFont(font());
    painter.setPen(isPrimary ? theme.accentText : theme.textPrimary);
    painter.drawText(rect(), Qt::AlignCenter | Qt::TextSingleLine, text());
}

}  // namespace ferrowyn

#include "ui/key_cap_label.h"

#include <QEvent>
#include <QPainter>
#include <algorithm>

#include "ui/control_painting.h"
#include "ui/text_style.h"

namespace ferrowyn {

namespace {

constexpr int controlHeight = 22;
constexpr int padding = 8;
constexpr int aroundText = 4;
constexpr double cornerRadius = 5;

}  // namespace

KeyCapLabel::KeyCapLabel() {
    setTextFormat(Qt::PlainText);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    setFont(fontFor(TextStyle::button));
}

QSize KeyCapLabel::sizeHint() const {
    const int high = std::max(controlHeight, fontMetrics().height() + aroundText);
    return {std::max(fontMetrics().horizontalAdvance(text()) + 2 * padding, high), high};
}

bool KeyCapLabel::event(QEvent* event) {
    const bool isHandled = QLabel::event(event);
    if (event->type() == QEvent::ApplicationFontChange) {
        setFont(fontFor(TextStyle::button));
        updateGeometry();
    }
    return isHandled;
}

void KeyCapLabel::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const WindowTheme theme = WindowTheme::current();
    control_painting::paintBox(painter, rect(), cornerRadius, theme.keyCapFill, theme.keyCapEdge);
    painter.setFont(font());
    painter.setPen(theme.textSecondary);
    painter.drawText(rect(), Qt::AlignCenter | Qt::TextSingleLine, text());
}

}  // namespace ferrowyn

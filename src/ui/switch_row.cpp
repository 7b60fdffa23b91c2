#include "ui/switch_row.h"

#include <QEvent>
#include <QPainter>
#include <algorithm>
#include <cmath>

#include "ui/control_painting.h"
#include "ui/group_metrics.h"
#include "ui/text_style.h"
#include "ui/translated.h"

namespace ferrowyn {

namespace {

constexpr int switchWidth = 34;
constexpr int switchHeight = 20;
constexpr int beforeSwitch = 16;
constexpr double disabledOpacity = 0.45;

}  // namespace

SwitchRow::SwitchRow(const Phrase& text) : QCheckBox(translated(text)) {
    QSizePolicy policy(QSizePolicy::Expanding, QSizePolicy::Preferred);
    policy.setHeightForWidth(true);
    setSizePolicy(policy);
    setFont(fontFor(TextStyle::body));
}

QSize SwitchRow::sizeHint() const {
    const int textWidth = fontMetrics().horizontalAdvance(text()) + 1;
    return {textWidth + beforeSwitch + switchWidth + 2 * group_metrics::rowInset, group_metrics::rowHeight};
}

QSize SwitchRow::minimumSizeHint() const {
    constexpr int narrowestText = 120;
    return {narrowestText + beforeSwitch + switchWidth + 2 * group_metrics::rowInset, group_metrics::rowHeight};
}

int SwitchRow::textWidth(int width) const {
    return width - 2 * group_metrics::rowInset - switchWidth - beforeSwitch;
}

int SwitchRow::textHeight(int width) const {
    return fontMetrics().boundingRect(QRect(0, 0, textWidth(width), 1), Qt::TextWordWrap, text()).height();
}

int SwitchRow::heightForWidth(int width) const {
    return std::max(group_metrics::rowHeight, textHeight(width) + 2 * group_metrics::rowPadding);
}

bool SwitchRow::event(QEvent* event) {
    const bool isHandled = QCheckBox::event(event);
    if (event->type() == QEvent::ApplicationFontChange) {
        setFont(fontFor(TextStyle::body));
        updateGeometry();
    }
    return isHandled;
}

QRectF SwitchRow::switchRect() const {
    const QRectF atTheEnd(width() - group_metrics::rowInset - switchWidth, std::round((height() - switchHeight) / 2.0),
                          switchWidth, switchHeight);
    return control_painting::mirrored(*this, atTheEnd);
}

void SwitchRow::paintEvent(QPaintEvent* /*event*/) {
    constexpr double knobInset = 2;
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const WindowTheme theme = WindowTheme::current();
    if (!isEnabled()) {
        painter.setOpacity(disabledOpacity);
    }
    const QRectF track = switchRect();
    painter.setFont(font());
    painter.setPen(theme.textPrimary);
    const QRectF textRect(group_metrics::rowInset, 0, textWidth(width()), height());
    painter.drawText(control_painting::mirrored(*this, textRect),
                     static_cast<int>(Qt::AlignLeft | Qt::AlignVCenter) | Qt::TextWordWrap, text());

    QColor fill = isChecked() ? theme.accent : theme.switchOff;
    if (isDown()) {
        fill = isChecked() ? theme.accentPressed : theme.switchOffEdge;
    }
    control_painting::paintBox(painter, track, switchHeight / 2.0, fill, isChecked() ? fill : theme.switchOffEdge);
    const double side = switchHeight - 2 * knobInset;
    const bool isAtTheRight = isChecked() != isRightToLeft();
    const QRectF knob(isAtTheRight ? track.right() - knobInset - side : track.left() + knobInset,
                      track.top() + knobInset, side, side);
    painter.setPen(Qt::NoPen);
    painter.setBrush(theme.switchKnob);
    painter.drawEllipse(knob);
    if (control_painting::showsFocus(*this)) {
        control_painting::paintFocusRing(painter, track, switchHeight / 2.0, theme);
    }
}

}  // namespace ferrowyn

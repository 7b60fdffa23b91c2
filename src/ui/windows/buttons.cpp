#include "ui/windows/buttons.h"

#include <QEvent>
#include <QPainter>
#include <algorithm>
#include <cmath>

#include "ui/common/text_line.h"
#include "ui/common/translation.h"
#include "ui/windows/settings_form.h"
#include "ui/windows/window_theme.h"

namespace ferrowyn {

namespace {

constexpr int buttonPadding = 12;
constexpr double buttonRadius = 6;
constexpr int symbolButtonSide = 26;
constexpr double buttonSymbolPoints = 13;
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
                               : QSize(textWidth + 2 * buttonPadding, control_painting::controlHeight(fontMetrics()));
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
    symbols_.paint(painter, symbol_, shape.center().x(), shape.center().y(), buttonSymbolPoints,
                   isStressed ? theme.textPrimary : theme.textSecondary);
    if (control_painting::showsFocus(*this)) {
        control_painting::paintFocusRing(painter, shape.adjusted(1, 1, -1, -1), shape.width() / 2, theme.focusRing);
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
    control_painting::paintBox(painter, rect(), buttonRadius, fill, isPrimary ? fill : theme.controlEdge);
    if (control_painting::showsFocus(*this)) {
        // Inside the button, so that it needs no room around it. On the accent colour only white is visible.
        constexpr double inset = 4;
        const QColor ring = isPrimary ? theme.accentText : theme.focusRing;
        control_painting::paintFocusRing(painter, QRectF(rect()).adjusted(inset, inset, -inset, -inset),
                                         buttonRadius - 3, ring);
    }
    painter.setFont(font());
    painter.setPen(isPrimary ? theme.accentText : theme.textPrimary);
    painter.drawText(rect(), Qt::AlignCenter | Qt::TextSingleLine, text());
}

namespace {

constexpr int segmentHeight = 58;
constexpr int usualSegmentWidth = 96;
constexpr int segmentPadding = 14;
constexpr double segmentRadius = 7;
constexpr double segmentSymbolPoints = 17;
constexpr double segmentSymbolCentre = 21;
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
    return {std::max(fontMetrics().horizontalAdvance(text()) + 2 * segmentPadding, usualSegmentWidth),
            segmentHeight + static_cast<int>(std::max(fontMetrics().height() - titleHeight, 0.0))};
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
    control_painting::paintBox(painter, rect(), segmentRadius, fill, isChecked() ? fill : theme.controlEdge);
    const QColor ink = isChecked() ? theme.accentText : theme.textPrimary;
    symbols_.paint(painter, symbol_, width() / 2.0, segmentSymbolCentre, segmentSymbolPoints, ink,
                   SymbolWeight::regular);
    painter.setFont(font());
    painter.setPen(ink);
    painter.drawText(QRectF(0, titleTop, width(), std::max(titleHeight, fontMetrics().height() + 0.0)),
                     Qt::AlignCenter | Qt::TextSingleLine, text());
    if (control_painting::showsFocus(*this)) {
        constexpr double inset = 4;
        const QColor ring = isChecked() ? theme.accentText : theme.focusRing;
        control_painting::paintFocusRing(painter, QRectF(rect()).adjusted(inset, inset, -inset, -inset),
                                         segmentRadius - 3, ring);
    }
}

namespace {

constexpr int switchWidth = 34;
constexpr int switchHeight = 20;
constexpr int beforeSwitch = 16;

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
        control_painting::paintFocusRing(painter, track, switchHeight / 2.0, theme.focusRing);
    }
}

}  // namespace ferrowyn

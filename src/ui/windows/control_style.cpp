#include "ui/windows/control_style.h"

#include <QApplication>
#include <QComboBox>
#include <QEvent>
#include <QLabel>
#include <QPainter>
#include <QPointer>
#include <QPolygonF>
#include <QPushButton>
#include <QRadioButton>
#include <QSpinBox>
#include <QStyleOption>
#include <algorithm>
#include <array>
#include <cmath>

#include "ui/common/colors.h"
#include "ui/common/text_line.h"
#include "ui/windows/settings_form.h"
#include "ui/windows/utility_theme.h"

namespace ferrowyn {

namespace {

constexpr const char* primaryProperty = "ferrowynPrimary";
constexpr const char* symbolProperty = "ferrowynSymbol";

constexpr double disabledOpacity = 0.45;
constexpr double boxRadius = 6;

bool has(const QStyleOption& option, QStyle::StateFlag flag) {
    return option.state.testFlag(flag);
}

TextStyle textStyleOf(const QWidget& control) {
    const auto* const button = qobject_cast<const QPushButton*>(&control);
    const bool isBoxed = (button != nullptr && !button->isFlat()) ||
                         qobject_cast<const QRadioButton*>(&control) != nullptr ||
                         qobject_cast<const QLabel*>(&control) != nullptr;
    return isBoxed ? TextStyle::button : TextStyle::body;
}

/// The fill of a button with round corners. A chosen segment does not answer to the pointer: a click changes nothing.
QColor fillOf(const QStyleOption& option, const UtilityTheme& theme, bool isAccented) {
    if (has(option, QStyle::State_Sunken)) {
        return isAccented ? theme.accentPressed : theme.controlFillPressed;
    }
    const bool isHovered =
        has(option, QStyle::State_MouseOver) && has(option, QStyle::State_Enabled) && !has(option, QStyle::State_On);
    if (isHovered) {
        return isAccented ? theme.accentHovered : theme.controlFillHovered;
    }
    return isAccented ? theme.accent : theme.controlFill;
}

/// Inside the control, so that it needs no room around it.
void paintInnerFocusRing(QPainter& painter, const QStyleOption& option, double inset, double radius,
                         const QColor& color) {
    if (has(option, QStyle::State_HasFocus) && has(option, QStyle::State_KeyboardFocusChange)) {
        control_painting::paintFocusRing(painter, QRectF(option.rect).adjusted(inset, inset, -inset, -inset), radius,
                                         color);
    }
}

// Push buttons

constexpr int buttonPadding = 12;
constexpr int symbolButtonSide = 26;
constexpr double buttonFocusInset = 4;

void drawSymbolButton(QPainter& painter, const QStyleOptionButton& option, const std::string& symbol,
                      SymbolImages& symbols) {
    constexpr double symbolPoints = 13;
    constexpr double ringInset = 4;
    const double ringRadius = option.rect.width() / 2.0 - ringInset + 1;
    const UtilityTheme theme = UtilityTheme::current();
    const bool isStressed = has(option, QStyle::State_MouseOver) || has(option, QStyle::State_Sunken);
    const QPointF middle = QRectF(option.rect).center();
    symbols.paint(painter, symbol, middle.x(), middle.y(), symbolPoints,
                  isStressed ? theme.textPrimary : theme.textSecondary);
    paintInnerFocusRing(painter, option, ringInset, ringRadius, theme.focusRing);
}

void drawLink(QPainter& painter, const QStyleOptionButton& option) {
    const UtilityTheme theme = UtilityTheme::current();
    const bool showsFocus = has(option, QStyle::State_HasFocus) && has(option, QStyle::State_KeyboardFocusChange);
    QFont font = painter.font();
    font.setUnderline(has(option, QStyle::State_MouseOver) || showsFocus);
    painter.setFont(font);
    painter.setPen(has(option, QStyle::State_Sunken) ? theme.textPrimary : theme.link);
    painter.drawText(option.rect, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine, option.text);
}

void drawBoxedButton(QPainter& painter, const QStyleOptionButton& option, bool isPrimary) {
    const UtilityTheme theme = UtilityTheme::current();
    const QColor fill = fillOf(option, theme, isPrimary);
    control_painting::paintBox(painter, option.rect, boxRadius, fill, isPrimary ? fill : theme.controlEdge);
    // On the accent colour only white is visible.
    paintInnerFocusRing(painter, option, buttonFocusInset, boxRadius - 3,
                        isPrimary ? theme.accentText : theme.focusRing);
    painter.setPen(isPrimary ? theme.accentText : theme.textPrimary);
    painter.drawText(option.rect, Qt::AlignCenter | Qt::TextSingleLine, option.text);
}

QSize pushButtonSize(const QStyleOptionButton& option, const QPushButton& button) {
    if (!ControlStyle::symbol(button).empty()) {
        return {symbolButtonSide, symbolButtonSide};
    }
    const int textWidth = option.fontMetrics.horizontalAdvance(option.text) + 1;
    return button.isFlat() ? QSize(textWidth, option.fontMetrics.height() + 2)
                           : QSize(textWidth + 2 * buttonPadding, control_painting::controlHeight(option.fontMetrics));
}

// Segments

constexpr int segmentHeight = 58;
constexpr int segmentPadding = 8;
constexpr int segmentTitleHeight = 20;

void drawSegment(QPainter& painter, const QStyleOptionButton& option, const std::string& symbol,
                 SymbolImages& symbols) {
    constexpr double radius = 7;
    constexpr double symbolPoints = 17;
    constexpr double symbolCentre = 21;
    constexpr int titleTop = 33;
    const UtilityTheme theme = UtilityTheme::current();
    const bool isChecked = has(option, QStyle::State_On);
    const QColor fill = fillOf(option, theme, isChecked);
    control_painting::paintBox(painter, option.rect, radius, fill, isChecked ? fill : theme.controlEdge);
    const QColor ink = isChecked ? theme.accentText : theme.textPrimary;
    symbols.paint(painter, symbol, option.rect.width() / 2.0, symbolCentre, symbolPoints, ink, SymbolWeight::regular);
    painter.setPen(ink);
    const QRect title(0, titleTop, option.rect.width(), std::max(segmentTitleHeight, option.fontMetrics.height()));
    painter.drawText(title, Qt::AlignCenter | Qt::TextSingleLine, option.text);
    paintInnerFocusRing(painter, option, buttonFocusInset, radius - 3, isChecked ? theme.accentText : theme.focusRing);
}

// Rows with a switch

constexpr QSize switchSize(34, 20);
constexpr int beforeSwitch = 16;

QRect switchRect(const QStyleOption& option) {
    const QRect& row = option.rect;
    const QRect atTheEnd(QPoint(row.right() + 1 - group_metrics::rowInset - switchSize.width(),
                                row.top() + (row.height() - switchSize.height() + 1) / 2),
                         switchSize);
    return QStyle::visualRect(option.direction, row, atTheEnd);
}

QRect switchTextRect(const QStyleOption& option) {
    const int behindText = group_metrics::rowInset + switchSize.width() + beforeSwitch;
    return QStyle::visualRect(option.direction, option.rect,
                              option.rect.adjusted(group_metrics::rowInset, 0, -behindText, 0));
}

void drawSwitchRow(QPainter& painter, const QStyleOptionButton& option) {
    constexpr double knobInset = 2;
    const UtilityTheme theme = UtilityTheme::current();
    painter.setPen(theme.textPrimary);
    const Qt::Alignment leading = QStyle::visualAlignment(option.direction, Qt::AlignLeft);
    painter.drawText(switchTextRect(option),
                     static_cast<int>(leading | Qt::AlignAbsolute | Qt::AlignVCenter) | Qt::TextWordWrap, option.text);

    const bool isOn = has(option, QStyle::State_On);
    QColor fill = isOn ? theme.accent : theme.switchOff;
    if (has(option, QStyle::State_Sunken)) {
        fill = isOn ? theme.accentPressed : theme.switchOffEdge;
    }
    const QRectF track = switchRect(option);
    control_painting::paintBox(painter, track, track.height() / 2, fill, isOn ? fill : theme.switchOffEdge);
    const double side = track.height() - 2 * knobInset;
    const bool isAtTheRight = isOn != (option.direction == Qt::RightToLeft);
    painter.setPen(Qt::NoPen);
    painter.setBrush(theme.switchKnob);
    painter.drawEllipse(QRectF(isAtTheRight ? track.right() - knobInset - side : track.left() + knobInset,
                               track.top() + knobInset, side, side));
    if (has(option, QStyle::State_HasFocus) && has(option, QStyle::State_KeyboardFocusChange)) {
        control_painting::paintFocusRing(painter, track, track.height() / 2, theme.focusRing);
    }
}

// Combo boxes

constexpr int comboPadding = 10;
constexpr int arrowsWidth = 22;
constexpr double fieldFocusInset = 3;

void drawComboBox(QPainter& painter, const QStyleOption& option) {
    constexpr double arrowsSide = 8;
    constexpr double halfWidth = 3;
    constexpr double tip = 5.5;
    constexpr double foot = 2.5;
    const UtilityTheme theme = UtilityTheme::current();
    control_painting::paintBox(painter, option.rect, boxRadius,
                               has(option, QStyle::State_MouseOver) ? theme.controlFillHovered : theme.controlFill,
                               theme.controlEdge);
    painter.setPen(QPen(theme.textSecondary, 1.5, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    const double fromTheEnd = comboPadding + arrowsSide / 2;
    const double x = option.direction == Qt::RightToLeft ? fromTheEnd : option.rect.width() - fromTheEnd;
    const double y = option.rect.height() / 2.0;
    for (const double direction : {-1.0, 1.0}) {
        painter.drawPolyline(QPolygonF{
            {x - halfWidth, y + direction * foot}, {x, y + direction * tip}, {x + halfWidth, y + direction * foot}});
    }
    paintInnerFocusRing(painter, option, fieldFocusInset, boxRadius - 2, theme.focusRing);
}

void drawComboBoxText(QPainter& painter, const QStyleOptionComboBox& option, const QWidget& widget) {
    constexpr int towardsArrows = 6;
    const QRect text = option.rect.adjusted(comboPadding, 0, towardsArrows - comboPadding - arrowsWidth, 0);
    control_painting::paintText(painter, widget, QStyle::visualRect(option.direction, option.rect, text),
                                option.currentText, painter.font(), UtilityTheme::current().textPrimary);
}

// Spin boxes

constexpr int stepWidth = 28;
constexpr int numberWidth = 32;
constexpr int aroundNumber = 6;

/// The same in every direction of writing: less is at the left.
QRect spinBoxRect(const QRect& box, QStyle::SubControl part) {
    switch (part) {
        case QStyle::SC_SpinBoxDown:
            return {box.left(), box.top(), stepWidth, box.height()};
        case QStyle::SC_SpinBoxUp:
            return {box.right() + 1 - stepWidth, box.top(), stepWidth, box.height()};
        case QStyle::SC_SpinBoxEditField:
            return box.adjusted(stepWidth, 0, -stepWidth, 0);
        default:
            return box;
    }
}

void drawStep(QPainter& painter, const QStyleOptionSpinBox& option, QStyle::SubControl part) {
    constexpr double armLength = 4.5;
    constexpr double strokeWidth = 1.6;
    constexpr double impossibleOpacity = 0.35;
    constexpr int inset = 3;
    const UtilityTheme theme = UtilityTheme::current();
    const bool isUp = part == QStyle::SC_SpinBoxUp;
    const QRect button = spinBoxRect(option.rect, part);
    const bool isPossible =
        option.stepEnabled.testFlag(isUp ? QAbstractSpinBox::StepUpEnabled : QAbstractSpinBox::StepDownEnabled);
    if (isPossible && option.activeSubControls.testFlag(part)) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(has(option, QStyle::State_Sunken) ? theme.controlFillPressed : theme.controlFillHovered);
        painter.drawRoundedRect(button.adjusted(inset, inset, -inset, -inset), boxRadius - 2, boxRadius - 2);
    }
    painter.save();
    painter.setOpacity(isPossible ? 1 : impossibleOpacity);
    painter.setPen(QPen(theme.textPrimary, strokeWidth, Qt::SolidLine, Qt::RoundCap));
    const QPointF middle = QRectF(button).center();
    painter.drawLine(middle - QPointF(armLength, 0), middle + QPointF(armLength, 0));
    if (isUp) {
        painter.drawLine(middle - QPointF(0, armLength), middle + QPointF(0, armLength));
    }
    painter.restore();
}

void drawSpinBox(QPainter& painter, const QStyleOptionSpinBox& option, const QSpinBox& box) {
    const UtilityTheme theme = UtilityTheme::current();
    control_painting::paintBox(painter, option.rect, boxRadius, theme.controlFill, theme.controlEdge);
    drawStep(painter, option, QStyle::SC_SpinBoxDown);
    drawStep(painter, option, QStyle::SC_SpinBoxUp);
    // Between the upper and the lower edge, without crossing them.
    const double scale = painter.deviceTransform().m11();
    const double line = hairline::width(scale);
    const double edge = 1 / scale;
    const QRectF all(option.rect);
    for (const double x : {all.left() + stepWidth, all.right() - stepWidth - line}) {
        painter.fillRect(QRectF(x, all.top() + edge, line, all.height() - 2 * edge), theme.hairline);
    }
    painter.setPen(theme.textPrimary);
    painter.drawText(option.rect, Qt::AlignCenter, box.text());
    paintInnerFocusRing(painter, option, fieldFocusInset, boxRadius - 2, theme.focusRing);
}

QSize spinBoxSize(const QStyleOption& option, const QSpinBox& box) {
    const int digits = option.fontMetrics.horizontalAdvance(QString::number(box.maximum()));
    return {2 * stepWidth + std::max(numberWidth, digits + 2 * aroundNumber),
            control_painting::controlHeight(option.fontMetrics)};
}

// Scroll bars, which are vertical and have no arrows

constexpr int scrollBarWidth = 12;
constexpr int thumbWidth = 6;
constexpr int shortestThumb = 28;
constexpr int endMargin = 4;

QRect thumbRect(const QStyleOptionSlider& option) {
    const int track = option.rect.height() - 2 * endMargin;
    const double range = option.maximum - option.minimum;
    const double content = std::max(range + option.pageStep, 1.0);
    const int length = std::clamp(static_cast<int>(std::lround(track * option.pageStep / content)),
                                  std::min(shortestThumb, track), track);
    const int top = QStyle::sliderPositionFromValue(option.minimum, option.maximum, option.sliderPosition,
                                                    track - length, option.upsideDown);
    return {(option.rect.width() - thumbWidth) / 2, endMargin + top, thumbWidth, length};
}

QRect scrollBarRect(const QStyleOptionSlider& option, QStyle::SubControl part) {
    const QRect& bar = option.rect;
    const QRect thumb = thumbRect(option);
    switch (part) {
        case QStyle::SC_ScrollBarGroove:
            return bar.adjusted(0, endMargin, 0, -endMargin);
        case QStyle::SC_ScrollBarSlider:
            return {bar.left(), thumb.top(), bar.width(), thumb.height()};
        case QStyle::SC_ScrollBarSubPage:
            return {bar.topLeft(), QPoint(bar.right(), thumb.top() - 1)};
        case QStyle::SC_ScrollBarAddPage:
            return {QPoint(bar.left(), thumb.bottom() + 1), bar.bottomRight()};
        default:
            return {};
    }
}

void drawScrollBar(QPainter& painter, const QStyleOptionSlider& option) {
    const bool isStressed =
        has(option, QStyle::State_MouseOver) || option.activeSubControls.testFlag(QStyle::SC_ScrollBarSlider);
    QColor color = UtilityTheme::current().textSecondary;
    color.setAlphaF(isStressed ? 0.75F : 0.45F);
    painter.setPen(Qt::NoPen);
    painter.setBrush(color);
    painter.drawRoundedRect(thumbRect(option), thumbWidth / 2.0, thumbWidth / 2.0);
}

// Key caps

constexpr double capRadius = 5;
constexpr QMargins insideCap(8, 2, 8, 2);

}  // namespace

// The desktop's style would bring its own sizes and animations.
ControlStyle::ControlStyle() : QProxyStyle(QStringLiteral("Fusion")) {}

void ControlStyle::applyTo(QWidget& control) {
    // A widget neither owns its style nor passes it on to its children, so the application owns one for all controls.
    static QPointer<ControlStyle> shared;
    if (shared == nullptr) {
        shared = new ControlStyle;
        shared->setParent(QCoreApplication::instance());
    }
    control.setStyle(shared);
    control.setFont(fontFor(textStyleOf(control)));
    control.setAttribute(Qt::WA_Hover);
    control.setAttribute(Qt::WA_OpaquePaintEvent, false);
    control.installEventFilter(shared);
}

void ControlStyle::setPrimary(QPushButton& button) {
    button.setProperty(primaryProperty, true);
}

void ControlStyle::setSymbol(QAbstractButton& button, std::string_view name) {
    button.setProperty(symbolProperty, QByteArray(name.data(), static_cast<qsizetype>(name.size())));
}

std::string ControlStyle::symbol(const QAbstractButton& button) {
    return button.property(symbolProperty).toByteArray().toStdString();
}

bool ControlStyle::eventFilter(QObject* watched, QEvent* event) {
    auto& control = *static_cast<QWidget*>(watched);
    if (event->type() == QEvent::ApplicationFontChange) {
        control.setFont(fontFor(textStyleOf(control)));
    }
    // The wheel scrolls the pane and must not change a setting on the way.
    const bool isSetting = qobject_cast<QComboBox*>(watched) != nullptr || qobject_cast<QSpinBox*>(watched) != nullptr;
    if (event->type() == QEvent::Wheel && isSetting) {
        event->ignore();
        return true;
    }
    return QProxyStyle::eventFilter(watched, event);
}

void ControlStyle::drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                               const QWidget* widget) const {
    static constexpr std::array drawn{CE_PushButton, CE_RadioButton, CE_CheckBox, CE_ComboBoxLabel, CE_ShapedFrame};
    if (std::ranges::find(drawn, element) == drawn.end()) {
        QProxyStyle::drawControl(element, option, painter, widget);
        return;
    }
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setOpacity(has(*option, State_Enabled) ? 1 : disabledOpacity);
    const auto* const box = qstyleoption_cast<const QStyleOptionComboBox*>(option);
    const auto* const button = qstyleoption_cast<const QStyleOptionButton*>(option);
    if (element == CE_ShapedFrame) {
        const UtilityTheme theme = UtilityTheme::current();
        control_painting::paintBox(*painter, option->rect, capRadius, theme.keyCapFill, theme.keyCapEdge);
    } else if (element == CE_ComboBoxLabel) {
        drawComboBoxText(*painter, *box, *widget);
    } else if (element == CE_CheckBox) {
        drawSwitchRow(*painter, *button);
    } else {
        const std::string symbolName = symbol(*static_cast<const QAbstractButton*>(widget));
        if (element == CE_RadioButton) {
            drawSegment(*painter, *button, symbolName, symbols_);
        } else if (!symbolName.empty()) {
            drawSymbolButton(*painter, *button, symbolName, symbols_);
        } else if (button->features.testFlag(QStyleOptionButton::Flat)) {
            drawLink(*painter, *button);
        } else {
            drawBoxedButton(*painter, *button, widget->property(primaryProperty).toBool());
        }
    }
    painter->restore();
}

void ControlStyle::drawComplexControl(ComplexControl control, const QStyleOptionComplex* option, QPainter* painter,
                                      const QWidget* widget) const {
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    if (const auto* const spin = qstyleoption_cast<const QStyleOptionSpinBox*>(option)) {
        drawSpinBox(*painter, *spin, *static_cast<const QSpinBox*>(widget));
    } else if (const auto* const bar = qstyleoption_cast<const QStyleOptionSlider*>(option)) {
        drawScrollBar(*painter, *bar);
    } else if (control == CC_ComboBox) {
        drawComboBox(*painter, *option);
    } else {
        QProxyStyle::drawComplexControl(control, option, painter, widget);
    }
    painter->restore();
}

QSize ControlStyle::sizeFromContents(ContentsType type, const QStyleOption* option, const QSize& contents,
                                     const QWidget* widget) const {
    const QFontMetrics& metrics = option->fontMetrics;
    switch (type) {
        case CT_PushButton:
            return pushButtonSize(*qstyleoption_cast<const QStyleOptionButton*>(option),
                                  *static_cast<const QPushButton*>(widget));
        case CT_RadioButton:
            return {contents.width() + 2 * segmentPadding,
                    segmentHeight + std::max(metrics.height() - segmentTitleHeight, 0)};
        case CT_CheckBox:
            return {contents.width() + beforeSwitch + switchSize.width() + 2 * group_metrics::rowInset,
                    group_metrics::rowHeight};
        case CT_ComboBox:
            return {contents.width() + 2 * comboPadding + arrowsWidth, control_painting::controlHeight(metrics)};
        case CT_SpinBox:
            return spinBoxSize(*option, *static_cast<const QSpinBox*>(widget));
        default:
            return QProxyStyle::sizeFromContents(type, option, contents, widget);
    }
}

QRect ControlStyle::subElementRect(SubElement element, const QStyleOption* option, const QWidget* widget) const {
    switch (element) {
        case SE_RadioButtonClickRect:
        case SE_CheckBoxClickRect:
            return option->rect;
        case SE_CheckBoxContents:
            return switchTextRect(*option);
        case SE_ShapedFrameContents:
            return option->rect.marginsRemoved(insideCap);
        default:
            return QProxyStyle::subElementRect(element, option, widget);
    }
}

QRect ControlStyle::subControlRect(ComplexControl control, const QStyleOptionComplex* option, SubControl part,
                                   const QWidget* widget) const {
    if (const auto* const bar = qstyleoption_cast<const QStyleOptionSlider*>(option)) {
        return scrollBarRect(*bar, part);
    }
    return control == CC_SpinBox ? spinBoxRect(option->rect, part)
                                 : QProxyStyle::subControlRect(control, option, part, widget);
}

int ControlStyle::pixelMetric(PixelMetric metric, const QStyleOption* option, const QWidget* widget) const {
    switch (metric) {
        case PM_ScrollBarExtent:
            return scrollBarWidth;
        case PM_ScrollBarSliderMin:
            return shortestThumb;
        default:
            return QProxyStyle::pixelMetric(metric, option, widget);
    }
}

int ControlStyle::styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                            QStyleHintReturn* result) const {
    if (hint == SH_ScrollBar_ContextMenu) {
        return 0;
    }
    if (hint == SH_SpinBox_StepModifier) {
        return Qt::NoModifier;  // ten steps at once would nearly always end at a limit
    }
    return QProxyStyle::styleHint(hint, option, widget, result);
}

}  // namespace ferrowyn

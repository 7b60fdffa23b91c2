#include "ui/windows/stepper.h"

#include <QLineEdit>
#include <QMouseEvent>
#include <QPainter>
#include <algorithm>

#include "ui/common/colors.h"
#include "ui/common/text_line.h"
#include "ui/windows/window_theme.h"

namespace ferrowyn {

namespace {

constexpr int buttonWidth = 28;
constexpr int numberWidth = 32;
constexpr int aroundNumber = 6;
constexpr double cornerRadius = 6;
constexpr double disabledOpacity = 0.35;

}  // namespace

Stepper::Stepper(int minimum, int maximum) {
    setRange(minimum, maximum);
    setSingleStep(1);
    setButtonSymbols(NoButtons);
    setFrame(false);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    setFont(fontFor(TextStyle::body));
    setAttribute(Qt::WA_Hover);
    setContextMenuPolicy(Qt::NoContextMenu);
    // The number is painted by this class, because the text field would accept incomplete numbers.
    lineEdit()->setReadOnly(true);
    lineEdit()->hide();
}

QSize Stepper::sizeHint() const {
    const int digits = fontMetrics().horizontalAdvance(QString::number(maximum()));
    return {2 * buttonWidth + std::max(numberWidth, digits + 2 * aroundNumber),
            control_painting::controlHeight(fontMetrics())};
}

bool Stepper::event(QEvent* event) {
    const bool isHandled = QSpinBox::event(event);
    if (event->type() == QEvent::ApplicationFontChange) {
        setFont(fontFor(TextStyle::body));
    } else if (event->type() == QEvent::HoverMove || event->type() == QEvent::HoverLeave) {
        update();
    }
    return isHandled;
}

QRectF Stepper::rectOf(Part part) const {
    switch (part) {
        case Part::fewer:
            return {0, 0, buttonWidth, static_cast<double>(height())};
        case Part::more:
            return {static_cast<double>(width() - buttonWidth), 0, buttonWidth, static_cast<double>(height())};
        case Part::none:
            break;
    }
    return {};
}

Stepper::Part Stepper::partAt(const QPointF& position) const {
    if (rectOf(Part::fewer).contains(position)) {
        return Part::fewer;
    }
    return rectOf(Part::more).contains(position) ? Part::more : Part::none;
}

void Stepper::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const WindowTheme theme = WindowTheme::current();
    control_painting::paintBox(painter, rect(), cornerRadius, theme.controlFill, theme.controlEdge);
    paintPart(painter, Part::fewer);
    paintPart(painter, Part::more);
    painter.setOpacity(1);
    // Between the upper and the lower edge, without crossing them.
    const double scale = painter.deviceTransform().m11();
    const double line = hairline::width(scale);
    const double edge = 1 / scale;
    painter.fillRect(QRectF(buttonWidth, edge, line, height() - 2 * edge), theme.hairline);
    painter.fillRect(QRectF(width() - buttonWidth - line, edge, line, height() - 2 * edge), theme.hairline);
    painter.setFont(font());
    painter.setPen(theme.textPrimary);
    painter.drawText(rect(), Qt::AlignCenter, text());
    if (control_painting::showsFocus(*this)) {
        constexpr double inset = 3;
        control_painting::paintFocusRing(painter, QRectF(rect()).adjusted(inset, inset, -inset, -inset),
                                         cornerRadius - 2, theme.focusRing);
    }
}

void Stepper::paintPart(QPainter& painter, Part part) {
    constexpr double armLength = 4.5;
    constexpr double strokeWidth = 1.6;
    const WindowTheme theme = WindowTheme::current();
    const QRectF button = rectOf(part);
    const bool isPossible = part == Part::fewer ? value() > minimum() : value() < maximum();
    if (isPossible && (pressed_ == part || (underMouse() && partAt(mapFromGlobal(QCursor::pos())) == part))) {
        constexpr double inset = 3;
        painter.setPen(Qt::NoPen);
        painter.setBrush(pressed_ == part ? theme.controlFillPressed : theme.controlFillHovered);
        painter.drawRoundedRect(button.adjusted(inset, inset, -inset, -inset), cornerRadius - 2, cornerRadius - 2);
    }
    painter.setOpacity(isPossible ? 1 : disabledOpacity);
    painter.setPen(QPen(theme.textPrimary, strokeWidth, Qt::SolidLine, Qt::RoundCap));
    const QPointF middle = button.center();
    painter.drawLine(middle - QPointF(armLength, 0), middle + QPointF(armLength, 0));
    if (part == Part::more) {
        painter.drawLine(middle - QPointF(0, armLength), middle + QPointF(0, armLength));
    }
}

void Stepper::resizeEvent(QResizeEvent* event) {
    QSpinBox::resizeEvent(event);
    // The base class lays its text field out again. It stays hidden.
    lineEdit()->hide();
}

void Stepper::mousePressEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton) {
        event->ignore();
        return;
    }
    pressed_ = partAt(event->position());
    if (pressed_ != Part::none) {
        stepBy(pressed_ == Part::more ? 1 : -1);
    }
    update();
}

void Stepper::mouseMoveEvent(QMouseEvent* event) {
    event->accept();
}

void Stepper::mouseReleaseEvent(QMouseEvent* event) {
    pressed_ = Part::none;
    update();
    event->accept();
}

/// The wheel scrolls the pane and must not change a number on the way.
void Stepper::wheelEvent(QWheelEvent* event) {
    event->ignore();
}

}  // namespace ferrowyn

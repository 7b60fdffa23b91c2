#include "ui/choice_box.h"

#include <QAbstractItemView>
#include <QAccessible>
#include <QPainter>
#include <QPolygonF>
#include <QWheelEvent>
#include <algorithm>

#include "ui/accessible_choice_box.h"
#include "ui/control_painting.h"
#include "ui/text_style.h"

namespace ferrowyn {

namespace {

constexpr int padding = 10;
constexpr int arrowsWidth = 22;
constexpr double arrowsSide = 8;
constexpr double cornerRadius = 6;

void paintArrows(QPainter& painter, const QPointF& middle, const QColor& color) {
    constexpr double halfWidth = 3;
    constexpr double tip = 5.5;
    constexpr double foot = 2.5;
    painter.setPen(QPen(color, 1.5, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    for (const double direction : {-1.0, 1.0}) {
        painter.drawPolyline(QPolygonF{{middle.x() - halfWidth, middle.y() + direction * foot},
                                       {middle.x(), middle.y() + direction * tip},
                                       {middle.x() + halfWidth, middle.y() + direction * foot}});
    }
}

}  // namespace

ChoiceBox::ChoiceBox() {
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    setAttribute(Qt::WA_Hover);
    installChoiceBoxAccessibility();
    // What is said of a choice follows it; the toolkit tells of the name alone.
    connect(this, &QComboBox::currentIndexChanged, this, [this] {
        QAccessibleValueChangeEvent event(this, currentText());
        QAccessible::updateAccessibility(&event);
    });
    adopt();
}

void ChoiceBox::adopt() {
    setFont(fontFor(TextStyle::body));
    const WindowTheme theme = WindowTheme::current();
    QPalette own;
    own.setColor(QPalette::Base, theme.groupFill);
    own.setColor(QPalette::Window, theme.groupFill);
    own.setColor(QPalette::Button, theme.groupFill);
    own.setColor(QPalette::Text, theme.textPrimary);
    own.setColor(QPalette::WindowText, theme.textPrimary);
    own.setColor(QPalette::Highlight, theme.accent);
    own.setColor(QPalette::HighlightedText, theme.accentText);
    view()->setPalette(own);
    view()->setFont(font());
    view()->window()->setPalette(own);
}

QSize ChoiceBox::sizeHint() const {
    int widest = 0;
    for (int index = 0; index < count(); ++index) {
        widest = std::max(widest, fontMetrics().horizontalAdvance(itemText(index)) + 1);
    }
    return {widest + 2 * padding + arrowsWidth, control_painting::controlHeight(fontMetrics())};
}

bool ChoiceBox::event(QEvent* event) {
    const bool isHandled = QComboBox::event(event);
    if (event->type() == QEvent::ApplicationFontChange || event->type() == QEvent::ApplicationPaletteChange ||
        event->type() == QEvent::PaletteChange) {
        adopt();
        updateGeometry();
    }
    return isHandled;
}

void ChoiceBox::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const WindowTheme theme = WindowTheme::current();
    control_painting::paintBox(painter, rect(), cornerRadius,
                               underMouse() ? theme.controlFillHovered : theme.controlFill, theme.controlEdge);
    const QRectF arrows(width() - padding - arrowsSide, (height() - arrowsSide) / 2, arrowsSide, arrowsSide);
    const QRectF textRect(padding, 0, width() - 2 * padding - arrowsWidth + 6, height());
    control_painting::paintText(painter, *this, control_painting::mirrored(*this, textRect), currentText(), font(),
                                theme.textPrimary);
    paintArrows(painter, control_painting::mirrored(*this, arrows).center(), theme.textSecondary);
    if (control_painting::showsFocus(*this)) {
        constexpr double inset = 3;
        control_painting::paintFocusRing(painter, QRectF(rect()).adjusted(inset, inset, -inset, -inset),
                                         cornerRadius - 2, theme);
    }
}

/// The wheel scrolls the pane; a choice that changes on the way past it would be a surprise.
void ChoiceBox::wheelEvent(QWheelEvent* event) {
    event->ignore();
}

}  // namespace ferrowyn

#include "ui/windows/scroll_areas.h"

#include <QEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QScreen>
#include <algorithm>
#include <cmath>

#include "ui/windows/window_theme.h"

namespace ferrowyn {

namespace {

constexpr int barWidth = 12;
constexpr double thumbWidth = 6;
constexpr double shortestThumb = 28;
constexpr double endMargin = 4;

}  // namespace

ThinScrollBar::ThinScrollBar(QWidget* parent) : QScrollBar(Qt::Vertical, parent) {
    setAttribute(Qt::WA_Hover);
    setAttribute(Qt::WA_OpaquePaintEvent, false);
    setContextMenuPolicy(Qt::NoContextMenu);
}

QSize ThinScrollBar::sizeHint() const {
    return {barWidth, static_cast<int>(shortestThumb + 2 * endMargin)};
}

QRectF ThinScrollBar::thumb() const {
    const double track = height() - 2 * endMargin;
    const double content = maximum() - minimum() + pageStep();
    const double length =
        std::clamp(track * pageStep() / std::max(content, 1.0), std::min(shortestThumb, track), track);
    const double range = maximum() - minimum();
    const double travelled = range > 0 ? (sliderPosition() - minimum()) / range : 0;
    return {(width() - thumbWidth) / 2, endMargin + travelled * (track - length), thumbWidth, length};
}

int ThinScrollBar::valueAt(double top) const {
    const double travel = height() - 2 * endMargin - thumb().height();
    const double share = travel > 0 ? std::clamp((top - endMargin) / travel, 0.0, 1.0) : 0;
    return minimum() + static_cast<int>(std::lround(share * (maximum() - minimum())));
}

void ThinScrollBar::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    QColor color = WindowTheme::current().textSecondary;
    color.setAlphaF(underMouse() || isSliderDown() ? 0.75F : 0.45F);
    painter.setPen(Qt::NoPen);
    painter.setBrush(color);
    painter.drawRoundedRect(thumb(), thumbWidth / 2, thumbWidth / 2);
}

void ThinScrollBar::mousePressEvent(QMouseEvent* event) {
    const double y = event->position().y();
    const QRectF at = thumb();
    if (y >= at.top() && y <= at.bottom()) {
        grabbedAt_ = y - at.top();
        setSliderDown(true);
    } else {
        triggerAction(y < at.top() ? SliderPageStepSub : SliderPageStepAdd);
    }
}

void ThinScrollBar::mouseMoveEvent(QMouseEvent* event) {
    if (isSliderDown()) {
        setSliderPosition(valueAt(event->position().y() - grabbedAt_));
    }
}

void ThinScrollBar::mouseReleaseEvent(QMouseEvent* /*event*/) {
    setSliderDown(false);
}

PlainScrollArea::PlainScrollArea() {
    setFrameShape(QFrame::NoFrame);
    setWidgetResizable(true);
    setVerticalScrollBar(new ThinScrollBar(this));
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setFocusPolicy(Qt::NoFocus);
    viewport()->setAutoFillBackground(false);
}

void PlainScrollArea::setContent(QWidget* content) {
    setWidget(content);
    // `setWidget` has it filled in the palette's colour.
    content->setAutoFillBackground(false);
}

bool PlainScrollArea::eventFilter(QObject* watched, QEvent* event) {
    const bool isHandled = QScrollArea::eventFilter(watched, event);
    if (watched == widget() && event->type() == QEvent::LayoutRequest) {
        // A control of the content was shown or hidden, which QScrollArea ignores.
        updateGeometry();
    }
    return isHandled;
}

FittingScrollArea::FittingScrollArea(std::unique_ptr<QWidget> content) {
    setContent(content.release());
}

QSize FittingScrollArea::contentSize() const {
    const QWidget& shown = *widget();
    const QSize asked = shown.sizeHint().expandedTo(shown.minimumSize()).boundedTo(shown.maximumSize());
    if (!shown.hasHeightForWidth()) {
        return asked;
    }
    // The size hint has the height for the preferred width, not for this one.
    return {asked.width(), std::max(shown.heightForWidth(asked.width()), shown.minimumHeight())};
}

QSize FittingScrollArea::sizeHint() const {
    const QSize needed = contentSize();
    const int room = screen()->availableGeometry().height() - window_metrics::titleBarHeight;
    if (needed.height() <= room) {
        return needed;
    }
    return {needed.width() + verticalScrollBar()->sizeHint().width(), room};
}

}  // namespace ferrowyn

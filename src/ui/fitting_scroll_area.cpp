#include "ui/fitting_scroll_area.h"

#include <QEvent>
#include <QScreen>
#include <QScrollBar>
#include <algorithm>

#include "ui/thin_scroll_bar.h"
#include "ui/window_metrics.h"

namespace ferrowyn {

FittingScrollArea::FittingScrollArea(std::unique_ptr<QWidget> content) {
    setFrameShape(QFrame::NoFrame);
    setWidgetResizable(true);
    setVerticalScrollBar(new ThinScrollBar(this));
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setFocusPolicy(Qt::NoFocus);
    viewport()->setAutoFillBackground(false);
    QWidget* const shown = content.release();
    setWidget(shown);
    // The area would have it filled in the palette's own colour.
    shown->setAutoFillBackground(false);
}

QSize FittingScrollArea::contentSize() const {
    const QWidget& shown = *widget();
    const QSize asked = shown.sizeHint().expandedTo(shown.minimumSize()).boundedTo(shown.maximumSize());
    if (!shown.hasHeightForWidth()) {
        return asked;
    }
    // What it asks for by itself is the height at the width that it would like, not at the one that it has.
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

bool FittingScrollArea::eventFilter(QObject* watched, QEvent* event) {
    const bool isHandled = QScrollArea::eventFilter(watched, event);
    if (watched == widget() && event->type() == QEvent::LayoutRequest) {
        updateGeometry();
    }
    return isHandled;
}

}  // namespace ferrowyn

#include "ui/plain_scroll_area.h"

#include <QEvent>

#include "ui/thin_scroll_bar.h"

namespace ferrowyn {

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
    // The area would have it filled in the palette's own colour.
    content->setAutoFillBackground(false);
}

bool PlainScrollArea::eventFilter(QObject* watched, QEvent* event) {
    const bool isHandled = QScrollArea::eventFilter(watched, event);
    if (watched == widget() && event->type() == QEvent::LayoutRequest) {
        // A control has come or gone, and the area asks for nothing by itself.
        updateGeometry();
    }
    return isHandled;
}

}  // namespace ferrowyn

#include "ui/windows/scroll_areas.h"

#include <QEvent>
#include <QScreen>
#include <QScrollBar>
#include <algorithm>

#include "ui/windows/control_style.h"

namespace ferrowyn {

PlainScrollArea::PlainScrollArea() {
    setFrameShape(QFrame::NoFrame);
    setWidgetResizable(true);
    ControlStyle::applyTo(*verticalScrollBar());
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
    const int room = screen()->availableGeometry().height() - titleBarHeight;
    if (needed.height() <= room) {
        return needed;
    }
    return {needed.width() + verticalScrollBar()->sizeHint().width(), room};
}

}  // namespace ferrowyn

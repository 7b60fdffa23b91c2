#include "ui/fitting_scroll_area.h"

#include <QScreen>
#include <QScrollBar>
#include <algorithm>

#include "ui/window_metrics.h"

namespace ferrowyn {

FittingScrollArea::FittingScrollArea(std::unique_ptr<QWidget> content) {
    setContent(content.release());
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

}  // namespace ferrowyn

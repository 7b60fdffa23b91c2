#include "ui/progress_view.h"

#include <QProgressBar>
#include <QVBoxLayout>

namespace ferrowyn {

ProgressView::ProgressView() {
    constexpr int barWidth = 200;
    setFixedSize(contentSize);
    auto* const bar = new QProgressBar;
    // Without an end: nobody knows how long it takes.
    bar->setRange(0, 0);
    bar->setTextVisible(false);
    bar->setFixedWidth(barWidth);
    (new QVBoxLayout(this))->addWidget(bar, 0, Qt::AlignCenter);
}

}  // namespace ferrowyn

#include "ui/windows/flow_layout.h"

#include <QStyle>
#include <QWidget>
#include <algorithm>

namespace ferrowyn {

FlowLayout::FlowLayout(int spacing) {
    setContentsMargins(0, 0, 0, 0);
    setSpacing(spacing);
}

FlowLayout::~FlowLayout() {
    for (const QLayoutItem* const item : items_) {
        delete item;
    }
}

void FlowLayout::addItem(QLayoutItem* item) {
    items_.push_back(item);
}

QLayoutItem* FlowLayout::itemAt(int index) const {
    return index >= 0 && index < count() ? items_[static_cast<std::size_t>(index)] : nullptr;
}

QLayoutItem* FlowLayout::takeAt(int index) {
    QLayoutItem* const item = itemAt(index);
    std::erase(items_, item);
    return item;
}

std::vector<QRect> FlowLayout::places(int width) const {
    std::vector<QRect> all;
    QPoint next;
    int lineHeight = 0;
    for (const QLayoutItem* const item : items_) {
        const QSize size = item->isEmpty() ? QSize(0, 0) : item->sizeHint();
        if (next.x() > 0 && next.x() + size.width() > width) {
            next = QPoint(0, next.y() + lineHeight + spacing());
            lineHeight = 0;
        }
        all.emplace_back(next, QSize(std::min(size.width(), width), size.height()));
        next.rx() += item->isEmpty() ? 0 : size.width() + spacing();
        lineHeight = std::max(lineHeight, size.height());
    }
    return all;
}

int FlowLayout::heightForWidth(int width) const {
    int height = 0;
    for (const QRect& place : places(width)) {
        height = std::max(height, place.bottom() + 1);
    }
    return height;
}

QSize FlowLayout::sizeHint() const {
    QSize size;
    for (const QRect& place : places(QLAYOUTSIZE_MAX)) {
        size = size.expandedTo({place.right() + 1, place.bottom() + 1});
    }
    return size;
}

QSize FlowLayout::minimumSize() const {
    QSize size;
    for (const QLayoutItem* const item : items_) {
        size = size.expandedTo(item->minimumSize());
    }
    return size;
}

void FlowLayout::setGeometry(const QRect& rect) {
    QLayout::setGeometry(rect);
    const auto direction = parentWidget() != nullptr ? parentWidget()->layoutDirection() : Qt::LeftToRight;
    const auto all = places(rect.width());
    for (std::size_t index = 0; index < items_.size(); ++index) {
        items_[index]->setGeometry(QStyle::visualRect(direction, rect, all[index].translated(rect.topLeft())));
    }
}

}  // namespace ferrowyn

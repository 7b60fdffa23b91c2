#include <QHelpEvent>
#include <QMouseEvent>
#include <QToolTip>
#include <QWheelEvent>

#include "core/window_presentation.h"
#include "ui/favourite_button.h"
#include "ui/switcher_view.h"

// What the pointer does to the panel's content.
namespace ferrowyn {

namespace {

bool contains(const Rect& rect, const QPointF& position) {
    return rect.contains({position.x(), position.y()});
}

}  // namespace

SwitcherView::Target SwitcherView::targetAt(const QPointF& position) {
    applyModel();
    if (!viewModel_.isAccessibilityTrusted.get()) {
        return contains(permissionButtonRect(), position) ? Target{Target::Kind::permissionButton, -1} : Target{};
    }
    const auto row = geometry_.rowAt({position.x(), position.y()}, scroll_);
    if (!row) {
        return {};
    }
    const auto star = scene().favouriteButton(*row, rowRect(*row));
    if (star && contains(FavouriteButton::hitArea(*star), position)) {
        return {Target::Kind::favouriteButton, *row};
    }
    return {Target::Kind::row, *row};
}

void SwitcherView::mouseMoveEvent(QMouseEvent* event) {
    const Target target = targetAt(event->position());
    setButtonHovered(target.kind == Target::Kind::permissionButton);
    if (target.row >= 0 && callbacks_.onHover) {
        callbacks_.onHover(target.row);
    }
}

void SwitcherView::mousePressEvent(QMouseEvent* event) {
    pressed_ = event->button() == Qt::LeftButton ? targetAt(event->position()) : Target{};
    if (pressed_.kind == Target::Kind::permissionButton) {
        setButtonHovered(true);
        update();
    }
}

void SwitcherView::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton) {
        return;
    }
    const Target pressed = std::exchange(pressed_, Target{});
    if (pressed.kind == Target::Kind::permissionButton) {
        update();
    }
    if (pressed != targetAt(event->position())) {
        return;
    }
    switch (pressed.kind) {
        case Target::Kind::nothing:
            return;
        case Target::Kind::row:
            activateRow(pressed.row);
            return;
        case Target::Kind::favouriteButton:
            toggleFavourite(pressed.row);
            return;
        case Target::Kind::permissionButton:
            requestPermissions();
            return;
    }
}

void SwitcherView::leaveEvent(QEvent* /*event*/) {
    setButtonHovered(false);
}

void SwitcherView::wheelEvent(QWheelEvent* event) {
    constexpr double unitsPerNotch = 120;
    applyModel();
    const double distance = event->pixelDelta().isNull() ? event->angleDelta().y() / unitsPerNotch * (rowRect(0).height)
                                                         : event->pixelDelta().y();
    scrollAnimation_.stop();
    setScroll(scroll_ - distance);
    event->accept();
}

bool SwitcherView::event(QEvent* event) {
    if (event->type() != QEvent::ToolTip) {
        return QWidget::event(event);
    }
    const auto* const help = static_cast<QHelpEvent*>(event);
    const Target target = targetAt(help->pos());
    if (target.kind == Target::Kind::favouriteButton) {
        const auto text =
            WindowPresentation::favouriteHelp(viewModel_.rows.get()[static_cast<std::size_t>(target.row)].isFavourite);
        QToolTip::showText(help->globalPos(), QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size())),
                           this);
    } else {
        QToolTip::hideText();
    }
    return true;
}

void SwitcherView::setButtonHovered(bool isHovered) {
    if (isButtonHovered_ != isHovered) {
        isButtonHovered_ = isHovered;
        update();
    }
}

void SwitcherView::activateRow(int index) {
    const auto& rows = viewModel_.rows.get();
    if (index >= 0 && static_cast<std::size_t>(index) < rows.size() && callbacks_.onActivate) {
        // A copy: activation ends the session, and with it may go the rows.
        const AppWindow window = rows[static_cast<std::size_t>(index)].window;
        callbacks_.onActivate(window);
    }
}

void SwitcherView::toggleFavourite(int index) {
    const auto& rows = viewModel_.rows.get();
    if (index >= 0 && static_cast<std::size_t>(index) < rows.size() && callbacks_.onToggleFavourite) {
        const AppWindow window = rows[static_cast<std::size_t>(index)].window;
        callbacks_.onToggleFavourite(window);
    }
}

void SwitcherView::requestPermissions() {
    if (callbacks_.onRequestPermissions) {
        callbacks_.onRequestPermissions();
    }
}

}  // namespace ferrowyn

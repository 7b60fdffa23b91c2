// What the pointer and the keyboard do to the menu.

#include <QAccessible>
#include <QApplication>
#include <QCursor>
#include <QHelpEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QStyleHints>
#include <QToolTip>
#include <QWheelEvent>
#include <QWindow>
#include <chrono>

#include "ui/accessible_status_menu.h"
#include "ui/display_text.h"
#include "ui/status_menu_popup.h"

namespace ferrowyn {

namespace {

constexpr std::chrono::milliseconds inputRetryInterval{20};
/// Who still holds the input after two seconds keeps it.
constexpr int mostInputRetries = 100;

}  // namespace

void StatusMenuPopup::showEvent(QShowEvent* event) {
    pointerAtShow_ = QCursor::pos();
    isArmed_ = false;
    QWidget::showEvent(event);
    setFocus(Qt::PopupFocusReason);
    inputRetriesLeft_ = mostInputRetries;
    inputTimer_.start(inputRetryInterval);
    announceMenu(*this, true);
}

void StatusMenuPopup::hideEvent(QHideEvent* event) {
    inputTimer_.stop();
    QToolTip::hideText();
    if (QWindow* const window = windowHandle()) {
        window->setMouseGrabEnabled(false);
        window->setKeyboardGrabEnabled(false);
    }
    QWidget::hideEvent(event);
    announceMenu(*this, false);
    if (const auto handler = std::exchange(onClosed_, nullptr)) {
        handler();
    }
}

/// A tray that tells of the press while the button is down still holds the pointer, and no event says when it lets go.
/// Without the pointer a click elsewhere would not close the menu, and without the keyboard no key would reach it. Who
/// keeps the keyboard to himself, as a password prompt does, need not be in the way of the pointer.
void StatusMenuPopup::takeInput() {
    QWindow* const window = windowHandle();
    const bool isLast = --inputRetriesLeft_ <= 0;
    const bool hasPointer = window != nullptr && window->setMouseGrabEnabled(true);
    const bool hasKeyboard = window != nullptr && window->setKeyboardGrabEnabled(true);
    if (isLast || window == nullptr || (hasPointer && hasKeyboard)) {
        inputTimer_.stop();
    }
}

std::optional<int> StatusMenuPopup::itemUnder(const QPointF& position) const {
    const auto index = rowUnder(position);
    const bool isItem = index && rowAt(*index).kind == MenuRow::Kind::item && isSelectable(*index);
    return isItem ? index : std::nullopt;
}

void StatusMenuPopup::pointTo(const QPointF& position) {
    isSelectedByKeyboard_ = false;
    const auto under = rowUnder(position);
    bool isChanged = false;
    if (under && rowAt(*under).kind == MenuRow::Kind::header) {
        isChanged = header_.pointerMoved(gearRect(*under), {position.x(), position.y()});
    } else {
        isChanged = header_.pointerExited();
    }
    select(itemUnder(position));
    if (isChanged) {
        update();
    }
}

void StatusMenuPopup::mouseMoveEvent(QMouseEvent* event) {
    const QPoint moved = event->globalPosition().toPoint() - pointerAtShow_;
    if (!isArmed_ && moved.manhattanLength() < QGuiApplication::styleHints()->startDragDistance()) {
        return;
    }
    isArmed_ = true;
    pointTo(event->position());
}

void StatusMenuPopup::mousePressEvent(QMouseEvent* event) {
    if (!rect().contains(event->position().toPoint())) {
        close();
        return;
    }
    isArmed_ = true;
    pointTo(event->position());
}

void StatusMenuPopup::mouseReleaseEvent(QMouseEvent* event) {
    if (!isArmed_) {
        return;
    }
    const auto under = rowUnder(event->position());
    if (!under) {
        return;
    }
    const Point point{event->position().x(), event->position().y()};
    const bool isHeader = rowAt(*under).kind == MenuRow::Kind::header;
    if (!isHeader || gearRect(*under).contains(point)) {
        choose(*under);
    }
}

void StatusMenuPopup::wheelEvent(QWheelEvent* event) {
    constexpr double stepsPerNotch = 120;
    scrollTo(scroll_ - event->angleDelta().y() / stepsPerNotch * MenuGeometry::rowHeight);
    pointTo(event->position());
    event->accept();
}

void StatusMenuPopup::leaveEvent(QEvent* event) {
    if (header_.pointerExited()) {
        update();
    }
    if (!isSelectedByKeyboard_) {
        select(std::nullopt);
    }
    QWidget::leaveEvent(event);
}

bool StatusMenuPopup::event(QEvent* event) {
    if (event->type() == QEvent::ToolTip) {
        const auto* const help = static_cast<QHelpEvent*>(event);
        showToolTip(help->pos(), help->globalPos());
        return true;
    }
    // The keys of the menu are no shortcuts of another window, and Tab moves no focus.
    if (event->type() == QEvent::ShortcutOverride) {
        event->accept();
        return true;
    }
    return QWidget::event(event);
}

void StatusMenuPopup::showToolTip(const QPoint& position, const QPoint& globalPosition) {
    const auto index = rowUnder(position);
    if (!index || rowAt(*index).tooltip.empty()) {
        QToolTip::hideText();
        return;
    }
    QToolTip::showText(globalPosition, display_text::singleLine(rowAt(*index).tooltip).toHtmlEscaped(), this,
                       toQt(rowRect(*index)).toRect());
}

void StatusMenuPopup::keyPressEvent(QKeyEvent* event) {
    event->accept();
    if (const auto row = rowWithKey(*event)) {
        choose(*row);
        return;
    }
    switch (event->key()) {
        case Qt::Key_Escape:
            close();
            return;
        case Qt::Key_Down:
        case Qt::Key_Tab:
            moveSelection(1);
            return;
        case Qt::Key_Up:
        case Qt::Key_Backtab:
            moveSelection(-1);
            return;
        case Qt::Key_Home:
        case Qt::Key_PageUp:
            selectEdge(1);
            return;
        case Qt::Key_End:
        case Qt::Key_PageDown:
            selectEdge(-1);
            return;
        case Qt::Key_Return:
        case Qt::Key_Enter:
        case Qt::Key_Space:
            if (selected_) {
                choose(*selected_);
            }
            return;
        default:
            typeAhead(event->text());
    }
}

std::optional<int> StatusMenuPopup::rowWithKey(const QKeyEvent& event) const {
    const auto modifiers = event.modifiers() & ~(Qt::KeypadModifier | Qt::GroupSwitchModifier);
    if (modifiers != Qt::ControlModifier) {
        return std::nullopt;
    }
    for (int index = 0; index < geometry_.rowCount(); ++index) {
        const QString key = QString::fromStdString(rowAt(index).keyEquivalent).toUpper();
        if (key.size() == 1 && event.key() == key.front().unicode() && isSelectable(index)) {
            return index;
        }
    }
    return std::nullopt;
}

/// From where the selection is, around; with none, to the first or last item, which the header is not.
void StatusMenuPopup::moveSelection(int step) {
    const int count = geometry_.rowCount();
    isSelectedByKeyboard_ = true;
    if (!selected_) {
        for (int index = step > 0 ? 0 : count - 1; index >= 0 && index < count; index += step) {
            if (rowAt(index).kind == MenuRow::Kind::item && isSelectable(index)) {
                select(index);
                return;
            }
        }
        return;
    }
    for (int tried = 1; tried <= count; ++tried) {
        const int index = ((*selected_ + step * tried) % count + count) % count;
        if (isSelectable(index)) {
            select(index);
            update();
            return;
        }
    }
}

void StatusMenuPopup::selectEdge(int step) {
    const int count = geometry_.rowCount();
    isSelectedByKeyboard_ = true;
    for (int index = step > 0 ? 0 : count - 1; index >= 0 && index < count; index += step) {
        if (isSelectable(index)) {
            select(index);
            update();
            return;
        }
    }
}

/// To the next row whose title begins with what was typed.
void StatusMenuPopup::typeAhead(const QString& text) {
    if (text.isEmpty() || !text.front().isPrint() || text.front().isSpace()) {
        return;
    }
    const int count = geometry_.rowCount();
    const int start = selected_.value_or(-1);
    for (int tried = 1; tried <= count; ++tried) {
        const int index = (start + tried) % count;
        const MenuRow& row = rowAt(index);
        if (row.kind == MenuRow::Kind::item && isSelectable(index) &&
            display_text::singleLine(row.title).startsWith(text, Qt::CaseInsensitive)) {
            isSelectedByKeyboard_ = true;
            select(index);
            return;
        }
    }
}

}  // namespace ferrowyn

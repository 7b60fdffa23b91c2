#include "ui/utility_window.h"

#include <QCloseEvent>
#include <QCursor>
#include <QGuiApplication>
#include <QPainter>
#include <QScreen>
#include <QShortcut>
#include <QVBoxLayout>
#include <QWindow>
#include <algorithm>
#include <utility>

#include "ui/accessible_roles.h"
#include "ui/fitting_scroll_area.h"
#include "ui/window_metrics.h"
#include "ui/window_theme.h"

namespace ferrowyn {

UtilityWindow::UtilityWindow(std::unique_ptr<QWidget> content, bool isResizable) : QWidget(nullptr, Qt::Window) {
    if (!isResizable) {
        // Otherwise some managers offer to maximise what cannot grow.
        setWindowFlags(Qt::Window | Qt::CustomizeWindowHint | Qt::WindowTitleHint | Qt::WindowSystemMenuHint |
                       Qt::WindowMinimizeButtonHint | Qt::WindowCloseButtonHint);
    }
    setAccessibleRole(*this, QAccessible::Window);
    auto* const layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSizeConstraint(isResizable ? QLayout::SetMinimumSize : QLayout::SetFixedSize);
    layout->addWidget(isResizable ? content.release() : new FittingScrollArea(std::move(content)));
    auto closing = QKeySequence::keyBindings(QKeySequence::Close);
    closing.append(QKeySequence(Qt::Key_Escape));
    for (const QKeySequence& keys : std::as_const(closing)) {
        connect(new QShortcut(keys, this), &QShortcut::activated, this, &QWidget::close);
    }
    if (isResizable) {
        resize(sizeHint());
    }
}

void UtilityWindow::centre() {
    const QScreen* screen = QGuiApplication::screenAt(QCursor::pos());
    if (screen == nullptr) {
        screen = QGuiApplication::primaryScreen();
    }
    if (screen == nullptr) {
        return;
    }
    ensurePolished();
    layout()->activate();
    const QRect area = screen->availableGeometry();
    // One that cannot be resized has fitted itself already.
    resize(size().boundedTo(area.size() - QSize(0, window_metrics::titleBarHeight)));
    QRect place(QPoint(), size());
    place.moveCenter(area.center());
    // One that is larger than the screen shows its beginning.
    place.moveLeft(std::max(place.left(), area.left()));
    place.moveTop(std::max(place.top(), area.top()));
    move(place.topLeft());
}

void UtilityWindow::leaveRoomAtTheTop(int height) {
    // The window's own margins, of which the toolkit takes the larger where it knows of the bar itself.
    setContentsMargins(0, height, 0, 0);
}

void UtilityWindow::paintEvent(QPaintEvent* /*event*/) {
    QPainter(this).fillRect(rect(), WindowTheme::current().ground);
}

void UtilityWindow::closeEvent(QCloseEvent* event) {
    if (onWillClose) {
        onWillClose();
    }
    QWidget::closeEvent(event);
}

void UtilityWindow::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() != QEvent::WindowStateChange) {
        return;
    }
    const bool wasFullScreen = static_cast<QWindowStateChangeEvent*>(event)->oldState().testFlag(Qt::WindowFullScreen);
    if (wasFullScreen && !isFullScreen() && onDidLeaveFullScreen) {
        onDidLeaveFullScreen();
    }
}

bool UtilityWindow::event(QEvent* event) {
    if (event->type() == QEvent::Show) {
        wasExposed_ = false;
        windowHandle()->removeEventFilter(this);
        windowHandle()->installEventFilter(this);
    }
    return QWidget::event(event);
}

bool UtilityWindow::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::Expose && !wasExposed_ && windowHandle()->isExposed()) {
        wasExposed_ = true;
        if (onExposed) {
            onExposed();
        }
    }
    return QWidget::eventFilter(watched, event);
}

}  // namespace ferrowyn

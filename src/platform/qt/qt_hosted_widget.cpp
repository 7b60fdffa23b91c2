#include "platform/qt/qt_hosted_widget.h"

#include <QCoreApplication>
#include <QMouseEvent>
#include <QWidget>
#include <QWindow>
#include <cmath>

namespace ferrowyn {

QtHostedWidget::QtHostedWidget(QWidget& widget, std::uintptr_t view) : widget_(widget) {
    // The system's material shows through, and the application in front keeps the keyboard.
    widget_.setWindowFlags(Qt::Window | Qt::FramelessWindowHint | Qt::WindowDoesNotAcceptFocus);
    widget_.setAttribute(Qt::WA_TranslucentBackground);
    widget_.setAttribute(Qt::WA_ShowWithoutActivating);
    widget_.winId();
    parent_.reset(QWindow::fromWinId(static_cast<WId>(view)));
    widget_.windowHandle()->setParent(parent_.get());
}

QtHostedWidget::~QtHostedWidget() {
    widget_.hide();
    // The widget owns its window, so the window must leave its parent first.
    if (auto* const window = widget_.windowHandle()) {
        window->setParent(nullptr);
    }
}

void QtHostedWidget::fill(const Size& size) {
    widget_.setGeometry(0, 0, static_cast<int>(std::ceil(size.width)), static_cast<int>(std::ceil(size.height)));
}

void QtHostedWidget::setVisible(bool isVisible) {
    widget_.setVisible(isVisible);
}

void QtHostedWidget::movePointer(const Point& place) {
    const QPointF local(place.x, place.y);
    QMouseEvent event(QEvent::MouseMove, local, widget_.mapToGlobal(local), Qt::NoButton, Qt::NoButton, Qt::NoModifier);
    QCoreApplication::sendEvent(&widget_, &event);
}

void QtHostedWidget::removePointer() {
    QEvent event(QEvent::Leave);
    QCoreApplication::sendEvent(&widget_, &event);
}

std::unique_ptr<HostedWidget> hostQtWidget(QWidget& widget, std::uintptr_t view) {
    return std::make_unique<QtHostedWidget>(widget, view);
}

}  // namespace ferrowyn

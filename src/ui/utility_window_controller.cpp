#include "ui/utility_window_controller.h"

#include <QApplication>
#include <QWidget>
#include <algorithm>
#include <utility>

#include "platform/application.h"
#include "ui/translated.h"
#include "ui/utility_window.h"

namespace ferrowyn {

namespace {

/// Menus, tooltips and the switcher's panel come and go without making the program one that is "open".
bool canBecomeMain(const QWidget& window) {
    const bool isOrdinary = window.windowType() == Qt::Window || window.windowType() == Qt::Dialog;
    return isOrdinary && !window.windowFlags().testAnyFlags(Qt::BypassWindowManagerHint | Qt::WindowDoesNotAcceptFocus);
}

}  // namespace

UtilityWindowController::UtilityWindowController(Application& application, Phrase title, bool isResizable,
                                                 ContentBuilder content, WindowConfiguration configure)
    : application_(application),
      title_(std::move(title)),
      isResizable_(isResizable),
      content_(std::move(content)),
      configure_(std::move(configure)) {}

UtilityWindowController::~UtilityWindowController() = default;

QWidget* UtilityWindowController::window() const {
    return window_.get();
}

void UtilityWindowController::show() {
    application_.setActivationPolicy(ActivationPolicy::regular);
    if (!window_) {
        makeWindow();
    }
    if (!window_->isVisible()) {
        configureWindow();
    }
    application_.activate();
    window_->setWindowState(window_->windowState() & ~Qt::WindowMinimized);
    window_->show();
    window_->raise();
    window_->activateWindow();
    if (window_->isExposed()) {
        application_.bringToFront(static_cast<WindowId>(window_->winId()));
    }
}

void UtilityWindowController::close() {
    if (window_) {
        window_->close();
    }
}

void UtilityWindowController::makeWindow() {
    window_ = std::make_unique<UtilityWindow>(content_(), isResizable_);
    window_->setWindowTitle(translated(title_));
    window_->onWillClose = [this] { windowWillClose(); };
    // The toolkit's own request carries the time of the last event that it saw, which may be hours old, and says that
    // an application asks: a manager that guards the focus then refuses.
    window_->onExposed = [this] { application_.bringToFront(static_cast<WindowId>(window_->winId())); };
    window_->onDidLeaveFullScreen = [this] { configureWindow(); };
    window_->centre();
}

void UtilityWindowController::configureWindow() {
    if (configure_) {
        window_->leaveRoomAtTheTop(configure_(static_cast<std::uintptr_t>(window_->winId()), isResizable_));
    }
}

void UtilityWindowController::windowWillClose() {
    const auto windows = QApplication::topLevelWidgets();
    const bool isLast = std::ranges::none_of(windows, [this](const QWidget* other) {
        // A minimised window is not on the screen; the toolkit calls it visible all the same.
        return other != window_.get() && other->isVisible() && !other->isMinimized() && canBecomeMain(*other);
    });
    if (isLast) {
        application_.setActivationPolicy(ActivationPolicy::accessory);
    }
}

}  // namespace ferrowyn

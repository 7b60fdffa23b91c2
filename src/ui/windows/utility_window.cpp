#include "ui/windows/utility_window.h"

#include <QApplication>
#include <QCloseEvent>
#include <QCursor>
#include <QGuiApplication>
#include <QPainter>
#include <QProgressBar>
#include <QScreen>
#include <QShortcut>
#include <QVBoxLayout>
#include <QWindow>
#include <algorithm>
#include <utility>

#include "platform/application.h"
#include "ui/common/accessibility.h"
#include "ui/common/translation.h"
#include "ui/windows/scroll_areas.h"
#include "ui/windows/utility_theme.h"

namespace ferrowyn {

UtilityWindow::UtilityWindow(std::unique_ptr<QWidget> content, bool isResizable) : QWidget(nullptr, Qt::Window) {
    if (!isResizable) {
        // Otherwise some window managers offer to maximise a window that cannot grow.
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
    // A window that is not resizable already fits the screen.
    resize(size().boundedTo(area.size() - QSize(0, FittingScrollArea::titleBarHeight)));
    QRect place(QPoint(), size());
    place.moveCenter(area.center());
    // Of a window that is larger than the screen the upper left part is shown.
    place.moveLeft(std::max(place.left(), area.left()));
    place.moveTop(std::max(place.top(), area.top()));
    move(place.topLeft());
}

void UtilityWindow::leaveRoomAtTheTop(int height) {
    // The margins of the widget: where the toolkit knows of the bar too, it takes the larger of both.
    setContentsMargins(0, height, 0, 0);
}

void UtilityWindow::paintEvent(QPaintEvent* /*event*/) {
    QPainter(this).fillRect(rect(), UtilityTheme::current().ground);
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
    } else if (event->type() == QEvent::ApplicationFontChange) {
        // The toolkit tells only windows; a control that sets its font hears of a new one in no other way.
        for (auto* const control : findChildren<QWidget*>()) {
            if (!control->isWindow()) {
                QCoreApplication::sendEvent(control, event);
            }
        }
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

namespace {

/// Menus, tooltips and the switcher's panel do not count as open windows.
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
    // The toolkit's request has the time of the last event that it saw, which may be hours old, and says that an
    // application asks. A window manager that prevents focus stealing refuses it.
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

ProgressView::ProgressView() {
    constexpr int barWidth = 200;
    setFixedSize(contentSize);
    auto* const bar = new QProgressBar;
    // A bar without an end, because the duration is unknown.
    bar->setRange(0, 0);
    bar->setTextVisible(false);
    bar->setFixedWidth(barWidth);
    (new QVBoxLayout(this))->addWidget(bar, 0, Qt::AlignCenter);
}

}  // namespace ferrowyn

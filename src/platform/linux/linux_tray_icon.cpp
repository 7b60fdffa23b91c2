#include "platform/linux/linux_tray_icon.h"

#include <QCoreApplication>
#include <QEvent>
#include <utility>

#include "platform/linux/status_notifier_item.h"

namespace ferrowyn {

LinuxTrayIcon::LinuxTrayIcon(MainLoop& mainLoop, BackgroundWork& backgroundWork,
                             const std::optional<std::string>& busAddress, TraySymbolPainter painter,
                             MakeFallback makeFallback)
    : painter_(std::move(painter)),
      makeFallback_(std::move(makeFallback)),
      notifier_(std::make_unique<StatusNotifierItem>(mainLoop, backgroundWork, busAddress)) {
    notifier_->setHostHandler([this](bool hasHost) { hostChanged(hasHost); });
    notifier_->object().setPressHandler([this](int x, int y) {
        if (onPress_) {
            onPress_({static_cast<double>(x), static_cast<double>(y), 0, 0});
        }
    });
    QCoreApplication::instance()->installEventFilter(this);
}

LinuxTrayIcon::~LinuxTrayIcon() = default;

void LinuxTrayIcon::setIcon(const std::string& symbol) {
    if (std::exchange(symbol_, symbol) != symbol) {
        redraw();
    }
}

void LinuxTrayIcon::setToolTip(const std::string& title) {
    toolTip_ = title;
    notifier_->object().setToolTip(QString::fromStdString(title));
    if (fallback_ != nullptr) {
        fallback_->setToolTip(title);
    }
}

void LinuxTrayIcon::setPressHandler(std::function<void(const Rect& anchor)> handler) {
    onPress_ = std::move(handler);
}

LinuxTrayIcon::Host LinuxTrayIcon::shownBy() const {
    if (notifier_->hasHost().value_or(false)) {
        return Host::statusNotifier;
    }
    return fallback_ != nullptr && fallback_->isShown() ? Host::fallback : Host::none;
}

bool LinuxTrayIcon::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::ApplicationPaletteChange && watched == QCoreApplication::instance()) {
        redraw();
    }
    return false;
}

void LinuxTrayIcon::hostChanged(bool hasHost) {
    if (hasHost) {
        fallback_.reset();
        return;
    }
    fallback_ = makeFallback_ ? makeFallback_() : nullptr;
    if (fallback_ == nullptr) {
        return;
    }
    fallback_->setPressHandler([this](const Rect& anchor) {
        if (onPress_) {
            onPress_(anchor);
        }
    });
    fallback_->setIcon(symbol_);
    fallback_->setToolTip(toolTip_);
}

void LinuxTrayIcon::redraw() {
    if (symbol_.empty()) {
        return;
    }
    StatusNotifierPixmaps pixmaps;
    for (const int side : {16, 22, 24, 32, 48, 64}) {
        pixmaps.append(StatusNotifierPixmap::fromImage(painter_(symbol_, side, std::nullopt)));
    }
    notifier_->object().setIcon(std::move(pixmaps));
    if (fallback_ != nullptr) {
        fallback_->setIcon(symbol_);
    }
}

}  // namespace ferrowyn

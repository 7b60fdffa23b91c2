#include "platform/linux/linux_tray_icon.h"

#include <QCoreApplication>
#include <QEvent>
#include <utility>

#include "platform/linux/status_notifier.h"
#include "platform/main_loop.h"

namespace ferrowyn {

namespace {

/// Far longer than a tray needs to embed an icon.
constexpr Seconds fallbackTimeout{2};

}  // namespace

LinuxTrayIcon::LinuxTrayIcon(MainLoop& mainLoop, BackgroundWork& backgroundWork,
                             const std::optional<std::string>& busAddress, TraySymbolPainter painter,
                             MakeFallback makeFallback)
    : mainLoop_(mainLoop),
      painter_(std::move(painter)),
      makeFallback_(std::move(makeFallback)),
      notifier_(std::make_unique<StatusNotifierItem>(mainLoop, backgroundWork, busAddress)) {
    notifier_->setHostHandler([this](StatusNotifierHost host) { hostChanged(host); });
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
    if (isOffered_) {
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

void LinuxTrayIcon::hostChanged(StatusNotifierHost host) {
    fallbackTimer_.reset();
    isOffered_ = host == StatusNotifierHost::present;
    if (isOffered_) {
        fallback_.reset();
        return;
    }
    startFallback();
    if (host == StatusNotifierHost::keepsSecondButton) {
        fallbackTimer_ = mainLoop_.after(fallbackTimeout, [this] { offerUnlessShown(); });
    }
}

/// An icon that answers only one button is better than none.
void LinuxTrayIcon::offerUnlessShown() {
    if (fallback_ == nullptr || !fallback_->isShown()) {
        fallback_.reset();
        notifier_->offer();
        isOffered_ = true;
    }
}

void LinuxTrayIcon::startFallback() {
    if (fallback_ != nullptr || !makeFallback_) {
        return;
    }
    fallback_ = makeFallback_();
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

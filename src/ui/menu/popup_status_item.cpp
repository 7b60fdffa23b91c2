#include "ui/menu/popup_status_item.h"

#include <QGuiApplication>
#include <QPainter>
#include <QPalette>
#include <QScreen>
#include <cmath>
#include <utility>

#include "ui/common/desktop_looks.h"
#include "ui/common/images.h"

namespace ferrowyn {

namespace {

/// From pixels of the root window. The toolkit keeps the origin of each screen, and divides distances from it by the
/// scale of the screen.
QRect inToolkitCoordinates(const Rect& pixels) {
    for (const QScreen* const screen : QGuiApplication::screens()) {
        const QPoint origin = screen->geometry().topLeft();
        const double scale = screen->devicePixelRatio();
        const QRectF frame(origin, QSizeF(screen->geometry().size()) * scale);
        if (frame.contains(pixels.midX(), pixels.midY())) {
            return QRectF(origin.x() + (pixels.x - origin.x()) / scale, origin.y() + (pixels.y - origin.y()) / scale,
                          pixels.width / scale, pixels.height / scale)
                .toRect();
        }
    }
    return QRectF(pixels.x, pixels.y, pixels.width, pixels.height).toRect();
}

}  // namespace

PopupStatusItem::PopupStatusItem(TrayIcon& icon, const TextTable& texts, std::function<bool()> isComposited)
    : icon_(icon), texts_(texts), isComposited_(std::move(isComposited)) {
    icon_.setPressHandler([this](const Rect& anchor) { pressed(anchor); });
}

PopupStatusItem::~PopupStatusItem() {
    icon_.setPressHandler(nullptr);
    if (popup_ != nullptr) {
        popup_->setClosedHandler(nullptr);
        popup_->close();
    }
}

void PopupStatusItem::setButton(const StatusButton& button) {
    icon_.setIcon(button.symbol);
    icon_.setToolTip(button.tooltip);
}

void PopupStatusItem::setMenu(const StatusMenu& menu) {
    menu_ = menu;
    if (popup_ != nullptr) {
        popup_->setMenu(menu_);
    }
}

void PopupStatusItem::pressed(const Rect& anchor) {
    if (popup_ != nullptr) {
        popup_->close();
        return;
    }
    popup_.reset(new StatusMenuPopup(menu_, texts_, isComposited_ && isComposited_()));  // NOLINT: with its deleter.
    popup_->setClosedHandler([this] { popup_.reset(); });
    popup_->setChosenHandler([this](const MenuRow& row) { carryOut(row); });
    popup_->popUp(inToolkitCoordinates(anchor));
}

/// Runs the action later, when the popup is gone: the action may take the keyboard, which the server grants only after
/// the popup has released it.
void PopupStatusItem::carryOut(const MenuRow& row) {
    QMetaObject::invokeMethod(
        &context_,
        [this, row] {
            QGuiApplication::sync();
            if (onAction_) {
                // A copy, because the action may replace the handler.
                const auto handler = onAction_;
                handler(row);
            }
        },
        Qt::QueuedConnection);
}

namespace {

constexpr double rimOpacity = 0.4;

void paintRim(QPainter& painter, SymbolImages& images, const std::string& symbol, int side, QColor color) {
    color.setAlphaF(static_cast<float>(rimOpacity));
    const double center = side / 2.0;
    for (int x = -1; x <= 1; ++x) {
        for (int y = -1; y <= 1; ++y) {
            if (x != 0 || y != 0) {
                images.paint(painter, symbol, center + x, center + y, SymbolImages::pointsIn(side), color);
            }
        }
    }
}

}  // namespace

QImage traySymbol(const std::string& symbol, int side, const std::optional<QColor>& color) {
    QImage image(side, side, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    SymbolImages images;
    const double points = SymbolImages::pointsIn(side);
    if (color) {
        images.paint(painter, symbol, side / 2.0, side / 2.0, points, *color);
        return image;
    }
    const bool isDark = ferrowyn::isDark(QGuiApplication::palette());
    const QColor light(0xF3, 0xF4, 0xF6);
    const QColor dark(0x1C, 0x1D, 0x21);
    paintRim(painter, images, symbol, side, isDark ? dark : light);
    images.paint(painter, symbol, side / 2.0, side / 2.0, points, isDark ? light : dark);
    return image;
}

}  // namespace ferrowyn

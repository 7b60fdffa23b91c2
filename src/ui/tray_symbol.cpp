#include "ui/tray_symbol.h"

#include <QGuiApplication>
#include <QPainter>
#include <QPalette>

#include "ui/symbol_images.h"

namespace ferrowyn {

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
    constexpr int middleLightness = 128;
    QImage image(side, side, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    SymbolImages images;
    const double points = SymbolImages::pointsIn(side);
    if (color) {
        images.paint(painter, symbol, side / 2.0, side / 2.0, points, *color);
        return image;
    }
    const bool isDark = QGuiApplication::palette().color(QPalette::Window).lightness() < middleLightness;
    const QColor light(0xF3, 0xF4, 0xF6);
    const QColor dark(0x1C, 0x1D, 0x21);
    paintRim(painter, images, symbol, side, isDark ? dark : light);
    images.paint(painter, symbol, side / 2.0, side / 2.0, points, isDark ? light : dark);
    return image;
}

}  // namespace ferrowyn

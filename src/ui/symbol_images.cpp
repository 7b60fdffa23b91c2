#include "ui/symbol_images.h"

#include <QFile>
#include <QPainter>
#include <QSvgRenderer>
#include <cmath>

#include "ui/icon_images.h"
#include "ui/resources.h"
#include "ui/system_looks_in_use.h"

namespace ferrowyn {

namespace {

/// The files are drawn at medium weight, with this attribute on every stroke that follows the weight.
constexpr const char* drawnStroke = "stroke-width=\"2\"";

QByteArray strokeFor(SymbolWeight weight) {
    switch (weight) {
        case SymbolWeight::light:
            return "stroke-width=\"1.5\"";
        case SymbolWeight::regular:
            return "stroke-width=\"1.8\"";
        case SymbolWeight::medium:
            return drawnStroke;
        case SymbolWeight::semibold:
            return "stroke-width=\"2.2\"";
    }
    return drawnStroke;
}

}  // namespace

void SymbolImages::paint(QPainter& painter, std::string_view name, double centerX, double centerY, double points,
                         const QColor& color, SymbolWeight weight) {
    // Of what is really painted on: a widget may be rendered into an image of another resolution.
    const double scale = painter.deviceTransform().m11();
    const Key key{std::string(name), static_cast<int>(std::lround(boxSide(points) * scale)),
                  static_cast<int>(std::lround(points * scale * 100)), color.rgba(), weight};
    auto found = images_.find(key);
    if (found == images_.end()) {
        found = images_.insert(key, render(key, points, scale));
    }
    const QImage& image = found.value();
    if (image.isNull()) {
        return;
    }
    // On whole device pixels, or every stroke would be blurred once more.
    const QSizeF shown = QSizeF(image.size()) / scale;
    const auto snapped = [scale](double edge) { return std::round(edge * scale) / scale; };
    painter.drawImage(
        QRectF(QPointF(snapped(centerX - shown.width() / 2), snapped(centerY - shown.height() / 2)), shown), image);
}

QImage SymbolImages::render(const Key& key, double points, double scale) {
    const SystemLooks* const looks = SystemLooksInUse::current();
    const auto symbol = looks != nullptr ? looks->symbol(key.name, points, key.weight, scale) : std::nullopt;
    QImage image = symbol ? pixelImage(*symbol) : drawing(key);
    if (!image.isNull()) {
        QPainter painter(&image);
        painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
        painter.fillRect(image.rect(), QColor::fromRgba(key.color));
    }
    return image;
}

QImage SymbolImages::drawing(const Key& key) {
    loadResources();
    QFile file(QStringLiteral(":/ferrowyn/symbols/%1.svg").arg(QString::fromStdString(key.name)));
    if (key.deviceSide < 1 || !file.open(QIODevice::ReadOnly)) {
        return {};
    }
    QSvgRenderer renderer(file.readAll().replace(drawnStroke, strokeFor(key.weight)));
    QImage image(key.deviceSide, key.deviceSide, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    renderer.render(&painter);
    return image;
}

}  // namespace ferrowyn

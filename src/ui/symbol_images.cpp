#include "ui/symbol_images.h"

#include <QFile>
#include <QPainter>
#include <QSvgRenderer>
#include <cmath>

#include "ui/resources.h"

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
    const Key key{std::string(name), static_cast<int>(std::lround(boxSide(points) * scale)), color.rgba(), weight};
    auto found = images_.find(key);
    if (found == images_.end()) {
        found = images_.insert(key, render(key));
    }
    const QImage& image = found.value();
    if (image.isNull()) {
        return;
    }
    // On whole device pixels, or every stroke would be blurred once more.
    const double shown = key.deviceSide / scale;
    const auto snapped = [scale](double edge) { return std::round(edge * scale) / scale; };
    painter.drawImage(QRectF(snapped(centerX - shown / 2), snapped(centerY - shown / 2), shown, shown), image);
}

QImage SymbolImages::render(const Key& key) {
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
    painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
    painter.fillRect(image.rect(), QColor::fromRgba(key.color));
    return image;
}

}  // namespace ferrowyn

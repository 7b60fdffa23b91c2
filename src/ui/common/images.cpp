#include "ui/common/images.h"

#include <QFile>
#include <QPainter>
#include <QSvgRenderer>
#include <QtGlobal>
#include <cmath>
#include <cstddef>
#include <cstring>

#include "ui/common/desktop_looks.h"

// The linker drops a static library's resources unless something refers to them. The macro must stand outside
// namespaces.
static void initializeResources() {
    Q_INIT_RESOURCE(ferrowyn);
}

namespace ferrowyn {

void loadResources() {
    initializeResources();
}

QString productIconFile() {
    loadResources();
    return QStringLiteral(":/ferrowyn/ferrowyn.svg");
}

namespace {

/// The drawings have medium weight; each stroke that changes with the weight has this attribute.
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
    // The scale of the paint device: a widget may be rendered into an image of another resolution.
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
    // Aligned to device pixels, so that strokes are not blurred.
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

namespace {

/// More icons than a session usually shows. Beyond it all are rendered again, which makes one frame slow.
constexpr qsizetype keptImages = 256;

}  // namespace

QImage pixelImage(const PixelBuffer& buffer) {
    const auto needed = static_cast<std::size_t>(buffer.width) * static_cast<std::size_t>(buffer.height);
    if (buffer.width < 1 || buffer.height < 1 || buffer.pixels.size() < needed) {
        return {};
    }
    QImage image(buffer.width, buffer.height, QImage::Format_ARGB32_Premultiplied);
    const auto width = static_cast<std::size_t>(buffer.width);
    for (int y = 0; y < buffer.height; ++y) {
        std::memcpy(image.scanLine(y), buffer.pixels.data() + static_cast<std::size_t>(y) * width,
                    width * sizeof(std::uint32_t));
    }
    return image;
}

const QImage& IconImages::image(const std::shared_ptr<const IconImage>& icon, int deviceSide) {
    static const QImage none;
    if (icon == nullptr || deviceSide < 1) {
        return none;
    }
    const Key key{icon.get(), deviceSide};
    const auto found = images_.constFind(key);
    if (found != images_.constEnd()) {
        return found->image;
    }
    if (images_.size() >= keptImages) {
        images_.clear();
    }
    return images_.insert(key, {pixelImage(icon->render(deviceSide)), icon})->image;
}

}  // namespace ferrowyn

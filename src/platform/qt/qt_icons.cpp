#include "platform/qt/qt_icons.h"

#include <QColor>
#include <QFont>
#include <QFontMetricsF>
#include <QLinearGradient>
#include <QPainter>
#include <QPixmap>
#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstring>
#include <numbers>
#include <utility>

#include "core/text.h"
#include "core/text_encoding.h"

namespace ferrowyn {

PixelBuffer QtIconImage::render(int side) const {
    QImage canvas(side, side, QImage::Format_ARGB32_Premultiplied);
    canvas.fill(Qt::transparent);
    // A QIcon never returns a larger picture than it has. A small one is scaled up here, so that all rows look alike.
    const QPixmap pixmap = icon_.pixmap(QSize(side, side), 1.0);
    if (!pixmap.isNull()) {
        QPainter painter(&canvas);
        painter.setRenderHint(QPainter::SmoothPixmapTransform);
        QRectF target(QPointF(), QSizeF(pixmap.size()).scaled(side, side, Qt::KeepAspectRatio));
        target.moveCenter(QPointF(side / 2.0, side / 2.0));
        painter.drawPixmap(target, pixmap, QRectF(pixmap.rect()));
    }
    return pixelBufferFrom(canvas);
}

PixelBuffer pixelBufferFrom(const QImage& image) {
    const QImage source = image.convertToFormat(QImage::Format_ARGB32_Premultiplied);
    PixelBuffer buffer{source.width(), source.height(), {}};
    const auto rowLength = static_cast<std::size_t>(source.width());
    buffer.pixels.resize(rowLength * static_cast<std::size_t>(source.height()));
    for (int y = 0; y < source.height(); ++y) {
        std::memcpy(buffer.pixels.data() + rowLength * static_cast<std::size_t>(y), source.constScanLine(y),
                    rowLength * sizeof(std::uint32_t));
    }
    return buffer;
}

QImage imageFrom(const PixelBuffer& buffer) {
    QImage image(buffer.width, buffer.height, QImage::Format_ARGB32_Premultiplied);
    const auto rowLength = static_cast<std::size_t>(buffer.width);
    for (int y = 0; y < buffer.height; ++y) {
        std::memcpy(image.scanLine(y), buffer.pixels.data() + rowLength * static_cast<std::size_t>(y),
                    rowLength * sizeof(std::uint32_t));
    }
    return image;
}

namespace {

constexpr std::uint32_t alphaMask = 0xFF000000U;
/// No icon is drawn larger than this. A larger size is a mistake of a program, or an attack on memory.
constexpr int largestSide = 1024;

bool isUsable(const PixelBuffer& buffer) {
    return buffer.width > 0 && buffer.height > 0 && buffer.width <= largestSide && buffer.height <= largestSide &&
           buffer.pixels.size() == static_cast<std::size_t>(buffer.width) * static_cast<std::size_t>(buffer.height) &&
           std::ranges::any_of(buffer.pixels, [](std::uint32_t pixel) { return (pixel & alphaMask) != 0; });
}

PixelBuffer premultiplied(PixelBuffer buffer) {
    for (auto& pixel : buffer.pixels) {
        pixel = qPremultiply(pixel);
    }
    return buffer;
}

int longerSide(const PixelBuffer& buffer) {
    return std::max(buffer.width, buffer.height);
}

}  // namespace

std::shared_ptr<const PixelIconImage> PixelIconImage::fromStraightAlpha(std::vector<PixelBuffer> sizes) {
    std::erase_if(sizes, [](const PixelBuffer& buffer) { return !isUsable(buffer); });
    if (sizes.empty()) {
        return nullptr;
    }
    std::ranges::transform(sizes, sizes.begin(), [](PixelBuffer& buffer) { return premultiplied(std::move(buffer)); });
    std::ranges::stable_sort(sizes, {}, longerSide);
    return std::shared_ptr<const PixelIconImage>(new PixelIconImage(std::move(sizes)));
}

PixelBuffer PixelIconImage::render(int side) const {
    const auto atLeast = std::ranges::find_if(sizes_, [side](const auto& size) { return longerSide(size) >= side; });
    const PixelBuffer& best = atLeast == sizes_.end() ? sizes_.back() : *atLeast;
    if (best.width == side && best.height == side) {
        return best;
    }
    // Scaling down in one smooth step averages all pixels; drawing it scaled does not.
    const QImage scaled = imageFrom(best).scaled(side, side, Qt::KeepAspectRatio, Qt::SmoothTransformation);
    QImage canvas(side, side, QImage::Format_ARGB32_Premultiplied);
    canvas.fill(Qt::transparent);
    QPainter painter(&canvas);
    painter.drawImage((side - scaled.width()) / 2, (side - scaled.height()) / 2, scaled);
    painter.end();
    return pixelBufferFrom(canvas);
}

namespace {

constexpr int hueCount = 360;
/// For a tile with sides of 32.
constexpr double cornerRadius = 8.0 / 32.0;
/// The letter's cap height is about 0.4 of the tile with this em size.
constexpr double emSize = 18.0 / 32.0;
/// No letter comes closer to the edge than this; a wide one is made smaller.
constexpr double widestLetter = 24.0 / 32.0;

std::string firstCharacter(std::string_view name) {
    const auto repaired = text::repairedUtf8(name);
    const auto characters = text::characters(text::trimmingWhitespaceAndNewlines(repaired));
    if (characters.empty()) {
        return {};
    }
    // Upper case can be two letters ("ß" becomes "SS"); a tile has room for one.
    auto upper = text::uppercased(characters.front());
    return text::characterCount(upper) == 1 ? upper : std::string(characters.front());
}

/// FNV-1a, because std::hash differs between libraries, and the colours must stay the same.
int stableHue(std::string_view name) {
    std::uint32_t hash = 2166136261U;
    for (const char byte : name) {
        hash = (hash ^ static_cast<unsigned char>(byte)) * 16777619U;
    }
    return static_cast<int>(hash % hueCount);
}

/// Yellow and green look brighter than other hues, too bright for a white letter, so they are made darker.
QColor tileColour(int hue, float lightness) {
    constexpr float brightestHue = 90.0F;
    constexpr float degree = std::numbers::pi_v<float> / 180.0F;
    const float brightness = std::max(0.0F, std::cos((static_cast<float>(hue) - brightestHue) * degree));
    return QColor::fromHslF(static_cast<float>(hue) / hueCount, 0.55F, lightness - 0.16F * brightness);
}

QFont letterFont(const QString& letter, double side) {
    QFont font;
    font.setWeight(QFont::DemiBold);
    font.setPixelSize(std::max(1, static_cast<int>(side * emSize)));
    const double width = QFontMetricsF(font).horizontalAdvance(letter);
    if (width > side * widestLetter) {
        font.setPixelSize(std::max(1, static_cast<int>(font.pixelSize() * side * widestLetter / width)));
    }
    return font;
}

void drawLetter(QPainter& painter, const QString& letter, double side) {
    const QFont font = letterFont(letter, side);
    const QFontMetricsF metrics(font);
    painter.setFont(font);
    painter.setPen(Qt::white);
    // Centred by the drawn shape, because a capital centred by ascent and descent would be too high.
    const QRectF ink = metrics.tightBoundingRect(letter);
    painter.drawText(QPointF(side / 2 - ink.center().x(), side / 2 - ink.center().y()), letter);
}

}  // namespace

LetteredTile::LetteredTile(std::string_view name) : letter_(firstCharacter(name)), hue_(stableHue(name)) {}

PixelBuffer LetteredTile::render(int side) const {
    QImage canvas(side, side, QImage::Format_ARGB32_Premultiplied);
    canvas.fill(Qt::transparent);
    QPainter painter(&canvas);
    painter.setRenderHint(QPainter::Antialiasing);

    const QRectF tile(0, 0, side, side);
    // Slightly lighter at the top.
    QLinearGradient gradient(tile.topLeft(), tile.bottomLeft());
    gradient.setColorAt(0, tileColour(hue_, 0.54F));
    gradient.setColorAt(1, tileColour(hue_, 0.42F));
    painter.setPen(Qt::NoPen);
    painter.setBrush(gradient);
    painter.drawRoundedRect(tile, side * cornerRadius, side * cornerRadius);
    if (!letter_.empty()) {
        drawLetter(painter, QString::fromStdString(letter_), side);
    }
    painter.end();
    return pixelBufferFrom(canvas);
}

}  // namespace ferrowyn

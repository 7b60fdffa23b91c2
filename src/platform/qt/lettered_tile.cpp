#include "platform/qt/lettered_tile.h"

#include <QColor>
#include <QFont>
#include <QFontMetricsF>
#include <QLinearGradient>
#include <QPainter>
#include <algorithm>
#include <cmath>
#include <numbers>

#include "core/text.h"
#include "core/text_encoding.h"
#include "platform/qt/pixel_buffer_image.h"

namespace ferrowyn {

namespace {

constexpr int hueCount = 360;
/// Of a tile of 32.
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

/// FNV-1a: std::hash may differ from one library to the next, and with it the colours people got used to.
int stableHue(std::string_view name) {
    std::uint32_t hash = 2166136261U;
    for (const char byte : name) {
        hash = (hash ^ static_cast<unsigned char>(byte)) * 16777619U;
    }
    return static_cast<int>(hash % hueCount);
}

/// Yellow and green look brighter than other hues, too bright for a white letter, so that they are made darker.
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
    // Centred by what is inked, not by ascent and descent: a lone capital would sit too high.
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
    // With a little light from above.
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

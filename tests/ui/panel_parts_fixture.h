#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QPainter>
#include <memory>
#include <string>

#include "platform/qt/qt_icons.h"
#include "tests/ui/paint_record.h"
#include "ui/common/paint_context.h"

namespace ferrowyn::test {

/// "#rrggbb", and how much of it covers what is below.
inline std::string colorText(const QColor& color, double opacity = 1) {
    QColor shown = color;
    shown.setAlphaF(static_cast<float>(shown.alphaF() * opacity));
    return shown.name(QColor::HexArgb).toStdString();
}
inline std::string colorText(const char* name, double opacity = 1) {
    return colorText(QColor(QLatin1String(name)), opacity);
}

/// Paints the parts of the panel one by one, dark with a compositor unless told otherwise.
class PanelPartsFixture : public testing::Test {
protected:
    /// An accent that takes white text as it is.
    static inline const QColor accent{0x10, 0x30, 0x7A};

    [[nodiscard]] PaintContext context(double scale) { return {theme, linuxTexts(), lines, symbols, icons, scale}; }

    /// What the part paints into a rectangle that does not begin at the origin.
    template <typename Part>
    [[nodiscard]] std::unique_ptr<PaintRecord> paint(const Part& part, const Rect& rect, double scale = 1) {
        return record([&](QPainter& painter, const PaintContext& with) { part.paint(painter, rect, with); }, scale);
    }
    template <typename Paint>
    [[nodiscard]] std::unique_ptr<PaintRecord> record(const Paint& paintInto, double scale = 1) {
        auto result = std::make_unique<PaintRecord>(QSizeF(900, 700), scale);
        QPainter painter(result.get());
        painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
        paintInto(painter, context(scale));
        return result;
    }

    static void expectFont(const PaintedText& text, double size, int weight) {
        EXPECT_NEAR(text.size, size, 0.01) << text;
        EXPECT_EQ(text.weight, weight) << text;
    }
    /// The capitals are as far from the rectangle's top as from its bottom.
    static void expectCentredOnLine(const PaintedText& text, const Rect& rect) {
        EXPECT_NEAR(text.baseline - QFontMetricsF(text.font).capHeight() / 2, rect.midY(), 0.75) << text;
    }
    /// A symbol of so many points stands in a square that is a fifth larger.
    static void expectSymbolSize(const PaintedImage& symbol, double points, double scale) {
        EXPECT_NEAR(symbol.rect.width(), points * 1.2, 0.51 / scale);
        EXPECT_EQ(symbol.rect.width(), symbol.rect.height());
    }
    static void expectInk(const PaintedImage& symbol, const std::string& color) {
        const auto ink = inkOf(symbol.image);
        ASSERT_TRUE(ink) << "more than one colour, or none";
        // Where no pixel is opaque the last bit is rounded.
        const QColor expected(QString::fromStdString(color));
        EXPECT_NEAR(ink->red(), expected.red(), 1) << color;
        EXPECT_NEAR(ink->green(), expected.green(), 1) << color;
        EXPECT_NEAR(ink->blue(), expected.blue(), 1) << color;
    }

    Theme theme = Theme::make(true, accent, true);
    TextLines lines;
    SymbolImages symbols;
    IconImages icons;
    std::shared_ptr<const IconImage> tile = std::make_shared<LetteredTile>("Writer");
};

}  // namespace ferrowyn::test

#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QColor>
#include <QFont>
#include <QImage>
#include <QPaintDevice>
#include <QPainter>
#include <QRectF>
#include <memory>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include "platform/qt/qt_icons.h"
#include "ui/common/paint_context.h"

namespace ferrowyn::test {

/// A run of text in one font and colour.
struct PaintedText {
    std::string text;
    QFont font;
    /// Points at scale 1, and the weight from 1 to 1000.
    double size = 0;
    int weight = 0;
    QColor color;
    /// From `left` to `right`; the letters stand on `baseline`.
    double left = 0;
    double right = 0;
    double baseline = 0;

    [[nodiscard]] double middle() const { return (left + right) / 2; }
};

/// A filled or outlined area.
struct PaintedShape {
    QRectF rect;
    double cornerRadius = 0;
    /// Invalid where the area is not filled, and where it has no outline.
    QColor fill;
    QColor stroke;
    double strokeWidth = 0;
};

struct PaintedImage {
    QRectF rect;
    QImage image;
    double opacity = 1;
};

std::ostream& operator<<(std::ostream& stream, const PaintedText& text);

/// A surface that keeps what is painted on it instead of showing it: each text with its font, colour and place, each
/// shape, each image, in points from the upper left corner and in the order of painting. Clipping is not recorded.
class PaintRecord final : public QPaintDevice {
public:
    /// `scale` is device pixels per point.
    explicit PaintRecord(const QSizeF& size, double scale = 1);
    ~PaintRecord() override;

    std::vector<PaintedText> texts;
    std::vector<PaintedShape> shapes;
    std::vector<PaintedImage> images;

    /// What is painted exactly once, or an exception, which fails the test and says what was painted.
    [[nodiscard]] const PaintedText& text(std::string_view text) const;
    [[nodiscard]] std::vector<std::string> words() const;
    [[nodiscard]] std::vector<PaintedShape> filledWith(const QColor& color) const;
    [[nodiscard]] std::vector<PaintedShape> strokedWith(const QColor& color) const;
    /// The one image that is this symbol in this stroke width (of a grid of 24), in one colour.
    [[nodiscard]] const PaintedImage& symbol(const std::string& name, const std::string& stroke) const;

    [[nodiscard]] QPaintEngine* paintEngine() const override;

protected:
    [[nodiscard]] int metric(PaintDeviceMetric metric) const override;

private:
    class Engine;

    QSizeF size_;
    double scale_;
    std::unique_ptr<Engine> engine_;
};

/// The colour of an image of which all that is seen has one colour.
[[nodiscard]] std::optional<QColor> inkOf(const QImage& image);

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

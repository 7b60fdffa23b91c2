#pragma once

#include <QColor>
#include <QFont>
#include <QImage>
#include <QPaintDevice>
#include <QRectF>
#include <memory>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

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

}  // namespace ferrowyn::test

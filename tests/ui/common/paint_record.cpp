#include "tests/ui/common/paint_record.h"

#include <QFile>
#include <QFontMetricsF>
#include <QGuiApplication>
#include <QPaintEngine>
#include <QPainterPath>
#include <QScreen>
#include <QSvgRenderer>
#include <algorithm>
#include <cmath>
#include <stdexcept>
#include <utility>

#include "ui/common/images.h"

namespace ferrowyn::test {
namespace {

double dotsPerInch() {
    return QGuiApplication::primaryScreen()->logicalDotsPerInchY();
}

/// How far the straight part of the left edge begins below the upper corner.
double cornerRadiusOf(const QPainterPath& path) {
    const QRectF bounds = path.boundingRect();
    double radius = bounds.height();
    for (int index = 0; index < path.elementCount(); ++index) {
        const QPainterPath::Element element = path.elementAt(index);
        constexpr double nearby = 0.01;
        if (element.type != QPainterPath::CurveToElement && std::abs(element.x - bounds.left()) < nearby) {
            radius = std::min(radius, element.y - bounds.top());
        }
    }
    return radius;
}

QImage symbolDrawing(const std::string& name, const std::string& stroke, const QSize& size) {
    loadResources();
    QFile file(QStringLiteral(":/ferrowyn/symbols/%1.svg").arg(QString::fromStdString(name)));
    if (!file.open(QIODevice::ReadOnly)) {
        throw std::runtime_error("no symbol " + name);
    }
    const QByteArray width = "stroke-width=\"" + QByteArray::fromStdString(stroke) + "\"";
    QSvgRenderer drawing(file.readAll().replace("stroke-width=\"2\"", width));
    QImage image(size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    drawing.render(&painter);
    return image;
}

}  // namespace

class PaintRecord::Engine final : public QPaintEngine {
public:
    explicit Engine(PaintRecord& record) : QPaintEngine(AllFeatures), record_(record) {}

    bool begin(QPaintDevice* /*device*/) override { return true; }
    bool end() override { return true; }
    void updateState(const QPaintEngineState& /*state*/) override {}
    [[nodiscard]] Type type() const override { return User; }

    void drawTextItem(const QPointF& position, const QTextItem& item) override {
        const QPointF start = toPoints().map(position);
        PaintedText text{item.text().toStdString(),
                         item.font(),
                         item.font().pointSizeF() * dotsPerInch() / 72,
                         item.font().weight(),
                         withOpacity(painter()->pen().color()),
                         start.x(),
                         start.x() + item.width(),
                         start.y()};
        if (!record_.texts.empty() && continues(record_.texts.back(), text)) {
            record_.texts.back().text += text.text;
            record_.texts.back().right = text.right;
        } else {
            record_.texts.push_back(std::move(text));
        }
    }

    void drawPath(const QPainterPath& path) override { add(toPoints().map(path)); }
    void drawRects(const QRectF* rects, int count) override {
        for (int index = 0; index < count; ++index) {
            QPainterPath path;
            path.addRect(rects[index]);
            add(toPoints().map(path));
        }
    }
    void drawRects(const QRect* rects, int count) override {
        for (int index = 0; index < count; ++index) {
            const QRectF rect(rects[index]);
            drawRects(&rect, 1);
        }
    }
    void drawPolygon(const QPointF* points, int count, PolygonDrawMode mode) override {
        QPainterPath path(points[0]);
        for (int index = 1; index < count; ++index) {
            path.lineTo(points[index]);
        }
        if (mode != PolylineMode) {
            path.closeSubpath();
        }
        add(toPoints().map(path));
    }
    void drawImage(const QRectF& rect, const QImage& image, const QRectF& /*part*/,
                   Qt::ImageConversionFlags /*flags*/) override {
        record_.images.push_back({toPoints().mapRect(rect), image, painter()->opacity()});
    }
    void drawPixmap(const QRectF& rect, const QPixmap& pixmap, const QRectF& part) override {
        drawImage(rect, pixmap.toImage(), part, Qt::AutoColor);
    }

private:
    [[nodiscard]] QTransform toPoints() const {
        return painter()->deviceTransform() * QTransform::fromScale(1 / record_.scale_, 1 / record_.scale_);
    }
    [[nodiscard]] QColor withOpacity(QColor color) const {
        color.setAlphaF(static_cast<float>(color.alphaF() * painter()->opacity()));
        return color;
    }
    /// Scripts and fallback fonts cut one line into several items.
    static bool continues(const PaintedText& before, const PaintedText& text) {
        return before.baseline == text.baseline && std::abs(before.right - text.left) < 0.1 &&
               before.size == text.size && before.weight == text.weight && before.color == text.color;
    }
    void add(const QPainterPath& path) {
        PaintedShape shape{path.boundingRect(), cornerRadiusOf(path), {}, {}, 0};
        if (painter()->brush().style() != Qt::NoBrush) {
            shape.fill = withOpacity(painter()->brush().color());
        }
        if (painter()->pen().style() != Qt::NoPen) {
            shape.stroke = withOpacity(painter()->pen().color());
            shape.strokeWidth = painter()->pen().widthF();
        }
        record_.shapes.push_back(shape);
    }

    PaintRecord& record_;
};

PaintRecord::PaintRecord(const QSizeF& size, double scale)
    : size_(size), scale_(scale), engine_(std::make_unique<Engine>(*this)) {}

PaintRecord::~PaintRecord() = default;

QPaintEngine* PaintRecord::paintEngine() const {
    return engine_.get();
}

int PaintRecord::metric(PaintDeviceMetric metric) const {
    constexpr double millimetresPerInch = 25.4;
    switch (metric) {
        case PdmWidth:
            return static_cast<int>(std::ceil(size_.width() * scale_));
        case PdmHeight:
            return static_cast<int>(std::ceil(size_.height() * scale_));
        case PdmWidthMM:
            return static_cast<int>(size_.width() / dotsPerInch() * millimetresPerInch);
        case PdmHeightMM:
            return static_cast<int>(size_.height() / dotsPerInch() * millimetresPerInch);
        case PdmDpiX:
        case PdmDpiY:
        case PdmPhysicalDpiX:
        case PdmPhysicalDpiY:
            return static_cast<int>(std::lround(dotsPerInch()));
        case PdmDevicePixelRatio:
            return static_cast<int>(scale_);
        case PdmDevicePixelRatioScaled:
            return static_cast<int>(scale_ * devicePixelRatioFScale());
        default:
            return QPaintDevice::metric(metric);
    }
}

const PaintedText& PaintRecord::text(std::string_view wanted) const {
    const PaintedText* found = nullptr;
    for (const auto& painted : texts) {
        if (painted.text == wanted && std::exchange(found, &painted) != nullptr) {
            throw std::runtime_error("\"" + std::string(wanted) + "\" is painted more than once");
        }
    }
    if (found == nullptr) {
        std::string message = "\"" + std::string(wanted) + "\" is not painted, but";
        for (const auto& painted : texts) {
            message += " \"" + painted.text + "\"";
        }
        throw std::runtime_error(message);
    }
    return *found;
}

std::vector<std::string> PaintRecord::words() const {
    std::vector<std::string> all;
    for (const auto& painted : texts) {
        all.push_back(painted.text);
    }
    return all;
}

std::vector<PaintedShape> PaintRecord::filledWith(const QColor& color) const {
    std::vector<PaintedShape> found;
    for (const auto& shape : shapes) {
        if (shape.fill.isValid() && shape.fill.rgba() == color.rgba()) {
            found.push_back(shape);
        }
    }
    return found;
}

std::vector<PaintedShape> PaintRecord::strokedWith(const QColor& color) const {
    std::vector<PaintedShape> found;
    for (const auto& shape : shapes) {
        if (shape.stroke.isValid() && shape.stroke.rgba() == color.rgba()) {
            found.push_back(shape);
        }
    }
    return found;
}

const PaintedImage& PaintRecord::symbol(const std::string& name, const std::string& stroke) const {
    for (const auto& painted : images) {
        const QImage drawing = symbolDrawing(name, stroke, painted.image.size());
        if (drawing.convertToFormat(QImage::Format_Alpha8) == painted.image.convertToFormat(QImage::Format_Alpha8)) {
            return painted;
        }
    }
    throw std::runtime_error("symbol " + name + " with strokes of " + stroke + " is not among the " +
                             std::to_string(images.size()) + " images");
}

std::optional<QColor> inkOf(const QImage& image) {
    // What is nearly transparent has lost its colour to rounding.
    constexpr int opaque = 255;
    constexpr int solid = 128;
    constexpr int rounding = 3;
    std::optional<QColor> ink;
    int strongest = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            const QColor color = image.pixelColor(x, y);
            if (color.alpha() > strongest) {
                strongest = color.alpha();
                ink = QColor(color.red(), color.green(), color.blue(), opaque);
            }
        }
    }
    for (int y = 0; ink && y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            const QColor color = image.pixelColor(x, y);
            const bool isSame = std::abs(color.red() - ink->red()) <= rounding &&
                                std::abs(color.green() - ink->green()) <= rounding &&
                                std::abs(color.blue() - ink->blue()) <= rounding;
            if (color.alpha() >= solid && !isSame) {
                return std::nullopt;
            }
        }
    }
    return strongest >= solid ? ink : std::nullopt;
}

std::ostream& operator<<(std::ostream& stream, const PaintedText& text) {
    return stream << '"' << text.text << "\" " << text.size << "/" << text.weight << " "
                  << text.color.name(QColor::HexArgb).toStdString() << " from " << text.left << " to " << text.right
                  << " on " << text.baseline;
}

}  // namespace ferrowyn::test

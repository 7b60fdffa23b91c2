#include "ui/panel/visual_effect_background.h"

#include <gtest/gtest.h>

#include <QImage>
#include <QPainter>

#include "ui/common/paint_context.h"

namespace ferrowyn {
namespace {

TEST(VisualEffectBackgroundTest, IsOfOneColourFromEdgeToEdgeAtEveryScale) {
    const Theme theme = Theme::make(false, Qt::blue, true);
    TextLines lines;
    SymbolImages symbols;
    IconImages icons;
    for (const double scale : {1.0, 1.25, 1.5, 1.75, 2.0}) {
        for (int height = 588; height <= 592; ++height) {
            QImage image(20, static_cast<int>(height * scale), QImage::Format_ARGB32_Premultiplied);
            image.setDevicePixelRatio(scale);
            image.fill(Qt::red);
            {
                QPainter painter(&image);
                painter.setRenderHint(QPainter::Antialiasing);
                // Wide enough that the corners lie outside the picture.
                VisualEffectBackground{.blendingMode = VisualEffectBackground::BlendingMode::behindWindow}.paint(
                    painter, {-100, 0, 300, static_cast<double>(height)},
                    PaintContext{theme, macTexts(), lines, symbols, icons, scale});
            }
            const QRgb middle = image.pixel(10, image.height() / 2);
            for (int y = 1; y < image.height() - 1; ++y) {
                ASSERT_EQ(image.pixel(10, y), middle) << "row " << y << " of " << height << " points at " << scale;
            }
        }
    }
}

}  // namespace
}  // namespace ferrowyn

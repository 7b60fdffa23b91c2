#include "platform/qt/pixel_buffer_image.h"

#include <cstddef>
#include <cstring>

namespace ferrowyn {

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

}  // namespace ferrowyn

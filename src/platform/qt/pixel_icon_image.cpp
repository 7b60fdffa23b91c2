#include "platform/qt/pixel_icon_image.h"

#include <QPainter>
#include <algorithm>
#include <cstring>
#include <utility>

#include "platform/qt/pixel_buffer_image.h"

namespace ferrowyn {

namespace {

constexpr std::uint32_t alphaMask = 0xFF000000U;
/// Nobody draws larger icons; a larger size is a program's mistake or an attempt to eat memory.
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
    // Scaling down in one smooth step averages all pixels, which drawing scaled would not.
    const QImage scaled = imageFrom(best).scaled(side, side, Qt::KeepAspectRatio, Qt::SmoothTransformation);
    QImage canvas(side, side, QImage::Format_ARGB32_Premultiplied);
    canvas.fill(Qt::transparent);
    QPainter painter(&canvas);
    painter.drawImage((side - scaled.width()) / 2, (side - scaled.height()) / 2, scaled);
    painter.end();
    return pixelBufferFrom(canvas);
}

}  // namespace ferrowyn

#include "ui/icon_images.h"

#include <cstddef>
#include <cstring>

namespace ferrowyn {

namespace {

/// More than the applications anybody runs; beyond it all are rendered anew, which costs one slow frame.
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

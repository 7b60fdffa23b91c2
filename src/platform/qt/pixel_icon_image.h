#pragma once

#include <memory>
#include <vector>

#include "platform/icon_source.h"

namespace ferrowyn {

/// An icon made of pixels in one or several sizes, as windows carry it.
class PixelIconImage final : public IconImage {
public:
    /// Each buffer holds *unpremultiplied* 0xAARRGGBB pixels, the way windows publish them; one whose pixels do not
    /// fill its width × height, or that has no visible pixel, is left out. Null when none is left.
    [[nodiscard]] static std::shared_ptr<const PixelIconImage> fromStraightAlpha(std::vector<PixelBuffer> sizes);

    /// From the smallest size that is at least `side` (scaling down looks better than scaling up), else the largest.
    [[nodiscard]] PixelBuffer render(int side) const override;

private:
    explicit PixelIconImage(std::vector<PixelBuffer> sizes) : sizes_(std::move(sizes)) {}

    /// Premultiplied, by rising size.
    std::vector<PixelBuffer> sizes_;
};

}  // namespace ferrowyn

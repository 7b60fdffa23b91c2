#pragma once

#import <AppKit/AppKit.h>

#include "platform/icon_source.h"

namespace ferrowyn {

/// The image drawn over all of so many device pixels; transparent where the system does not draw.
[[nodiscard]] PixelBuffer drawnPixels(NSImage* _Nonnull image, int width, int height);

/// An image of the system. It keeps its best drawing for each size, so that it is asked anew each time.
class MacIconImage final : public IconImage {
public:
    /// The size that every icon is given: that of the largest place where the program shows one in a list.
    static constexpr double pointSide = 32;

    explicit MacIconImage(NSImage* _Nonnull image);

    /// Transparent where the system does not draw.
    [[nodiscard]] PixelBuffer render(int side) const override;

private:
    NSImage* _Nonnull image_;
};

}  // namespace ferrowyn

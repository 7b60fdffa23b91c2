#pragma once

#include <QImage>

#include "platform/icon_source.h"

namespace ferrowyn {

/// Between the interface's pixels and the toolkit's image of the same format.
[[nodiscard]] PixelBuffer pixelBufferFrom(const QImage& image);
[[nodiscard]] QImage imageFrom(const PixelBuffer& buffer);

}  // namespace ferrowyn

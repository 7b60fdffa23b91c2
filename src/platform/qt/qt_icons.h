#pragma once

#include <QIcon>
#include <QImage>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/icon_source.h"

namespace ferrowyn {

/// An icon of the toolkit: from a theme or a file, SVG or pixels. Drawn at the size asked for, from the best size that
/// the icon has. Main thread, with a QGuiApplication.
class QtIconImage final : public IconImage {
public:
    explicit QtIconImage(QIcon icon) : icon_(std::move(icon)) {}

    [[nodiscard]] PixelBuffer render(int side) const override;

private:
    QIcon icon_;
};

/// Convert between `PixelBuffer` and the toolkit's image of the same format.
[[nodiscard]] PixelBuffer pixelBufferFrom(const QImage& image);
[[nodiscard]] QImage imageFrom(const PixelBuffer& buffer);

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

/// The last resort among icons: a rounded tile in a colour that depends on the name, with the name's first character on
/// it. Main thread, with a QGuiApplication.
class LetteredTile final : public IconImage {
public:
    explicit LetteredTile(std::string_view name);

    [[nodiscard]] PixelBuffer render(int side) const override;

    /// The first user-perceived character of the name in upper case; empty for a blank name, which gets a plain tile.
    [[nodiscard]] const std::string& letter() const { return letter_; }
    /// 0 to 359. The same name has the same hue in every run and on every machine.
    [[nodiscard]] int hue() const { return hue_; }

private:
    std::string letter_;
    int hue_;
};

}  // namespace ferrowyn

#include <QColor>
#include <QIcon>
#include <QPixmap>
#include <algorithm>

#include "platform/qt/qt_icons.h"

namespace ferrowyn {
namespace {

PixelBuffer filled(int width, int height, std::uint32_t colour) {
    return {width, height,
            std::vector<std::uint32_t>(static_cast<std::size_t>(width) * static_cast<std::size_t>(height), colour)};
}

std::uint32_t pixel(const PixelBuffer& buffer, int x, int y) {
    return buffer.pixels[static_cast<std::size_t>(y * buffer.width + x)];
}

std::uint32_t alpha(std::uint32_t colour) {
    return colour >> 24U;
}

constexpr std::uint32_t red = 0xFFFF0000;
constexpr std::uint32_t green = 0xFF00FF00;
constexpr std::uint32_t blue = 0xFF0000FF;

TEST(PixelIconImage, TakesTheSmallestSizeThatIsLargeEnough) {
    const auto icon =
        PixelIconImage::fromStraightAlpha({filled(64, 64, blue), filled(16, 16, red), filled(32, 32, green)});
    ASSERT_NE(icon, nullptr);
    EXPECT_EQ(pixel(icon->render(32), 5, 5), green);
    EXPECT_EQ(pixel(icon->render(24), 5, 5), green);
    EXPECT_EQ(pixel(icon->render(33), 5, 5), blue);
    const auto large = icon->render(128);
    EXPECT_EQ(large.width, 128);
    EXPECT_EQ(large.height, 128);
    EXPECT_EQ(pixel(large, 64, 64), blue);
}

TEST(PixelIconImage, PremultipliesStraightAlpha) {
    const auto icon = PixelIconImage::fromStraightAlpha({filled(8, 8, 0x80FF0000)});
    EXPECT_EQ(pixel(icon->render(8), 0, 0), 0x80800000U);
}

TEST(PixelIconImage, CentresAnIconThatIsNotSquare) {
    const auto icon = PixelIconImage::fromStraightAlpha({filled(32, 16, red)});
    const auto rendered = icon->render(32);
    EXPECT_EQ(rendered.height, 32);
    EXPECT_EQ(alpha(pixel(rendered, 16, 2)), 0U);
    EXPECT_EQ(pixel(rendered, 16, 16), red);
}

TEST(PixelIconImage, LeavesOutSizesThatMakeNoSense) {
    PixelBuffer cutOff = filled(16, 16, red);
    cutOff.pixels.resize(10);
    EXPECT_EQ(PixelIconImage::fromStraightAlpha({}), nullptr);
    EXPECT_EQ(PixelIconImage::fromStraightAlpha({cutOff, {0, 0, {}}, {-1, -1, {1}}, filled(16, 16, 0x00FFFFFF)}),
              nullptr);
    EXPECT_NE(PixelIconImage::fromStraightAlpha({cutOff, filled(16, 16, red)}), nullptr);
}

TEST(QtIconImage, ScalesASmallIconUp) {
    QPixmap small(16, 16);
    small.fill(QColor(0, 0, 255));
    const auto rendered = QtIconImage(QIcon(small)).render(64);
    EXPECT_EQ(rendered.width, 64);
    EXPECT_EQ(pixel(rendered, 32, 32), blue);
    EXPECT_EQ(pixel(rendered, 1, 1), blue);
}

TEST(LetteredTile, ShowsTheFirstCharacterInUpperCase) {
    EXPECT_EQ(LetteredTile("terminal").letter(), "T");
    EXPECT_EQ(LetteredTile("  éditeur").letter(), "É");
    EXPECT_EQ(LetteredTile("e\u0301diteur").letter(), "E\u0301");
    EXPECT_EQ(LetteredTile("終端").letter(), "終");
    EXPECT_EQ(LetteredTile("👩‍👩‍👧 family").letter(), "👩‍👩‍👧");
    EXPECT_EQ(LetteredTile("ßharp").letter(), "ß");
    EXPECT_EQ(LetteredTile("").letter(), "");
    EXPECT_EQ(LetteredTile(" \t").letter(), "");
    EXPECT_NE(LetteredTile("\xFF\xFE").letter(), "");
}

TEST(LetteredTile, TheColourBelongsToTheName) {
    EXPECT_EQ(LetteredTile("Terminal").hue(), LetteredTile("Terminal").hue());
    EXPECT_NE(LetteredTile("Terminal").hue(), LetteredTile("Editor").hue());
    // What people got used to stays.
    EXPECT_EQ(LetteredTile("").hue(), static_cast<int>(2166136261U % 360));
}

TEST(LetteredTile, IsARoundedTileAtEverySize) {
    for (const int side : {1, 16, 32, 40, 64, 256}) {
        const auto tile = LetteredTile("").render(side);
        EXPECT_EQ(tile.width, side);
        EXPECT_EQ(tile.pixels.size(), static_cast<std::size_t>(side) * static_cast<std::size_t>(side));
        if (side >= 16) {
            EXPECT_EQ(alpha(pixel(tile, 0, 0)), 0U) << side;
            EXPECT_EQ(alpha(pixel(tile, side / 2, side / 2)), 255U) << side;
            EXPECT_EQ(alpha(pixel(tile, side / 2, 0)), 255U) << side;
            // Where the corner's curve ends: a quarter of the side.
            EXPECT_GT(alpha(pixel(tile, side / 4 + 1, 0)), 200U) << side;
        }
    }
}

TEST(LetteredTile, DrawsItsLetter) {
    const auto plain = LetteredTile("").render(32);
    const auto lettered = LetteredTile("T").render(32);
    const auto isWhite = [](std::uint32_t colour) { return colour == 0xFFFFFFFF; };
    EXPECT_EQ(std::ranges::count_if(plain.pixels, isWhite), 0);
    EXPECT_GT(std::ranges::count_if(lettered.pixels, isWhite), 10);
}

}  // namespace
}  // namespace ferrowyn

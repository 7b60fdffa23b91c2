#include "platform/linux/theme_icons.h"

#include <QColor>
#include <QIcon>
#include <QImage>
#include <cstdlib>

#include "tests/platform/linux/temporary_folder.h"

namespace ferrowyn {
namespace {

constexpr std::uint32_t blue = 0xFF0000FF;
constexpr const char* blueSquare =
    "<svg xmlns=\"http://www.w3.org/2000/svg\" viewBox=\"0 0 10 10\"><rect width=\"10\" height=\"10\" "
    "fill=\"#0000ff\"/></svg>";

std::uint32_t centreOf(const std::shared_ptr<const IconImage>& icon, int side) {
    const auto rendered = icon->render(side);
    return rendered.pixels.at(static_cast<std::size_t>(rendered.width * (rendered.height / 2) + rendered.width / 2));
}

class ThemeIconsTest : public testing::Test {
protected:
    ThemeIconsTest() {
        setenv("XDG_DATA_DIRS", folder.path().c_str(), 1);
        QIcon::setThemeSearchPaths({QString::fromStdString((folder.path() / "icons").string())});
    }
    ~ThemeIconsTest() override { unsetenv("XDG_DATA_DIRS"); }

    TemporaryFolder folder;
};

TEST_F(ThemeIconsTest, FindsAnIconOfTheBasicTheme) {
    folder.write("icons/hicolor/index.theme",
                 "[Icon Theme]\nName=Hicolor\nDirectories=scalable/apps\n\n[scalable/apps]\nSize=64\nType=Scalable\n"
                 "MinSize=8\nMaxSize=512\nContext=Applications\n");
    folder.write("icons/hicolor/scalable/apps/org.example.Blue.svg", blueSquare);
    const auto icon = themeIcon("org.example.Blue");
    ASSERT_NE(icon, nullptr);
    EXPECT_EQ(centreOf(icon, 16), blue);
    EXPECT_EQ(centreOf(icon, 200), blue);
}

TEST_F(ThemeIconsTest, ReadsAFileAtAnySize) {
    const auto file = folder.write("anywhere/blue.svg", blueSquare);
    const auto icon = themeIcon(file.string());
    ASSERT_NE(icon, nullptr);
    for (const int side : {1, 24, 32, 48, 300}) {
        EXPECT_EQ(icon->render(side).width, side);
        EXPECT_EQ(centreOf(icon, side), blue) << side;
    }
}

TEST_F(ThemeIconsTest, FallsBackToThePixmaps) {
    folder.write("pixmaps/oldprogram.svg", blueSquare);
    ASSERT_NE(themeIcon("oldprogram"), nullptr);
    EXPECT_EQ(centreOf(themeIcon("oldprogram"), 32), blue);
    EXPECT_NE(themeIcon("oldprogram.png"), nullptr);
}

TEST_F(ThemeIconsTest, ThereIsNoneForWhatIsMissingOrBroken) {
    EXPECT_EQ(themeIcon(""), nullptr);
    EXPECT_EQ(themeIcon("org.example.NoSuchIcon"), nullptr);
    EXPECT_EQ(themeIcon("/no/such/file.png"), nullptr);
    EXPECT_EQ(themeIcon(folder.write("broken.png", "not a picture").string()), nullptr);
}

}  // namespace
}  // namespace ferrowyn

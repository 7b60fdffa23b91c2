#include <gmock/gmock.h>

#include <QApplication>
#include <QDir>
#include <QFontInfo>
#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <functional>
#include <string>

#include "tests/ui/interface_models.h"
#include "ui/panel/switcher_view.h"

// The whole panel, compared with the pictures beside this file. scripts/renew_pictures.sh draws them anew.
namespace ferrowyn {
namespace {

using test::PanelModel;

/// Its package is among those of the tests; every machine draws it alike, or nearly so.
const char* const pictureFont = "DejaVu Sans";
/// A pixel differs where one of its channels does by more than this, of 255: other versions of the font engine shade
/// the edges of letters a little differently.
constexpr int shade = 40;
/// Of all pixels.
constexpr double mostDiffering = 0.0001;
/// What is faint, thin or small differs in few pixels or by little: a hairline, a chip. It changes the mean of a small
/// square, which the shading of letters' edges hardly does.
constexpr int cellSide = 8;
/// Of 255, in one channel. A hairline that is missing changes the squares along it by 3.6.
constexpr double mostCellDifference = 3;

struct Picture {
    std::string name;
    bool isDark = true;
    double scale = 1;
    std::function<void(PanelModel&)> arrange = [](PanelModel&) {};

    friend std::ostream& operator<<(std::ostream& stream, const Picture& picture) { return stream << picture.name; }
};

std::vector<AppWindow> shownWindows() {
    std::vector<AppWindow> list{
        PanelModel::window(1, 1, "Writer", "Quarterly report — draft 3"),
        PanelModel::window(2, 2, "Code", "switcher_controller.cpp — ferrowyn"),
        PanelModel::window(3, 3, "Mail", "Inbox (12)"),
        PanelModel::window(4, 1, "Writer", "Minutes of the meeting, with a title that is too long for the panel"),
        PanelModel::window(5, 5, "Files", "Downloads"),
        PanelModel::window(6, 6, "Browser", "שלום עולם"),
    };
    list[2].isOnActiveSpace = false;
    list[3].isFullScreen = true;
    list[4].isMinimized = true;
    return list;
}

QImage drawn(const Picture& picture) {
    PanelModel model;
    model.favourites.identifiers.set({"Code", "Mail"});
    model.show(shownWindows());
    model.viewModel.beginSession(false);
    SwitcherView view(model.viewModel, model.preferences, linuxTexts(), {});
    QPalette palette;
    palette.setColor(QPalette::Window, picture.isDark ? Qt::black : Qt::white);
    palette.setColor(QPalette::Highlight, QColor(0x2F, 0x6F, 0xED));
    view.setPalette(palette);
    picture.arrange(model);
    const Size panelSize = model.panelSize();
    const QSize size(static_cast<int>(panelSize.width), static_cast<int>(panelSize.height));
    view.resize(size);
    view.synchronize();
    QImage image((QSizeF(size) * picture.scale).toSize(), QImage::Format_RGB32);
    image.setDevicePixelRatio(picture.scale);
    image.fill(Qt::magenta);
    view.render(&image);
    image.setDevicePixelRatio(1);
    return image;
}

bool differs(QRgb is, QRgb was) {
    return std::abs(qRed(is) - qRed(was)) > shade || std::abs(qGreen(is) - qGreen(was)) > shade ||
           std::abs(qBlue(is) - qBlue(was)) > shade;
}

/// How far the means of the two pictures are apart inside this part: the most of the three channels.
double meanDifference(const QImage& expected, const QImage& actual, const QRect& part) {
    int red = 0;
    int green = 0;
    int blue = 0;
    for (int y = part.top(); y <= part.bottom(); ++y) {
        for (int x = part.left(); x <= part.right(); ++x) {
            const QRgb is = actual.pixel(x, y);
            const QRgb was = expected.pixel(x, y);
            red += qRed(is) - qRed(was);
            green += qGreen(is) - qGreen(was);
            blue += qBlue(is) - qBlue(was);
        }
    }
    return std::max({std::abs(red), std::abs(green), std::abs(blue)}) /
           static_cast<double>(part.width() * part.height());
}

/// What differs between two pictures of one size.
struct Difference {
    int pixels = 0;
    int cells = 0;
    double worstCell = 0;
    /// Pixels that differ are white, squares that differ as they are now; everything else is dimmed.
    QImage marks;
};

Difference difference(const QImage& expected, const QImage& actual) {
    Difference found;
    found.marks = QImage(actual.size(), QImage::Format_RGB32);
    for (int top = 0; top < actual.height(); top += cellSide) {
        for (int left = 0; left < actual.width(); left += cellSide) {
            const QRect cell = QRect(left, top, cellSide, cellSide).intersected(actual.rect());
            const double apart = meanDifference(expected, actual, cell);
            found.worstCell = std::max(found.worstCell, apart);
            const bool cellDiffers = apart > mostCellDifference;
            found.cells += cellDiffers ? 1 : 0;
            const int dimming = cellDiffers ? 1 : 4;
            for (int y = cell.top(); y <= cell.bottom(); ++y) {
                for (int x = cell.left(); x <= cell.right(); ++x) {
                    const QRgb is = actual.pixel(x, y);
                    const bool pixelDiffers = differs(is, expected.pixel(x, y));
                    found.pixels += pixelDiffers ? 1 : 0;
                    found.marks.setPixel(x, y,
                                         pixelDiffers
                                             ? qRgb(255, 255, 255)
                                             : qRgb(qRed(is) / dimming, qGreen(is) / dimming, qBlue(is) / dimming));
                }
            }
        }
    }
    return found;
}

class PanelPictureTest : public testing::TestWithParam<Picture> {
protected:
    PanelPictureTest() : usualFont_(QApplication::font()) { QApplication::setFont(QFont(QLatin1String(pictureFont))); }
    ~PanelPictureTest() override { QApplication::setFont(usualFont_); }

private:
    QFont usualFont_;
};

TEST_P(PanelPictureTest, ThePanelLooksAsItDid) {
    ASSERT_EQ(QFontInfo(QApplication::font()).family().toStdString(), pictureFont)
        << "the pictures are drawn with it: install fonts-dejavu-core";
    const QString name = QString::fromStdString(GetParam().name);
    const QString kept = QDir(QStringLiteral(FERROWYN_PICTURES)).filePath(name + ".png");
    const QImage actual = drawn(GetParam());
    if (qEnvironmentVariableIsSet("FERROWYN_RENEW_PICTURES")) {
        ASSERT_TRUE(actual.save(kept)) << kept.toStdString();
        GTEST_SKIP() << "drew " << kept.toStdString();
    }
    const QImage expected = QImage(kept).convertToFormat(QImage::Format_RGB32);
    ASSERT_TRUE(actual.size() == expected.size())
        << "the panel has " << actual.width() << " x " << actual.height() << " pixels, " << kept.toStdString()
        << " has " << expected.width() << " x " << expected.height()
        << "\nIf it should have this size, run scripts/renew_pictures.sh.";
    const Difference found = difference(expected, actual);
    const int all = actual.width() * actual.height();
    if (found.pixels <= mostDiffering * all && found.cells == 0) {
        return;
    }
    QDir folder(QDir(QCoreApplication::applicationDirPath()).filePath(QStringLiteral("panel-pictures")));
    ASSERT_TRUE(folder.mkpath(QStringLiteral(".")));
    const QString shown = folder.filePath(name + "-actual.png");
    const QString marked = folder.filePath(name + "-difference.png");
    ASSERT_TRUE(actual.save(shown) && found.marks.save(marked));
    ADD_FAILURE() << found.pixels << " of " << all << " pixels, and " << found.cells << " squares of " << cellSide
                  << " pixels by up to " << found.worstCell << " levels, are not those of " << kept.toStdString()
                  << "\nnow:        " << shown.toStdString() << "\ndifference: " << marked.toStdString()
                  << "\nIf it looks as it should, run scripts/renew_pictures.sh.";
}

std::vector<Picture> pictures() {
    const auto inLayout = [](SwitcherLayout layout) {
        return [layout](PanelModel& model) { model.preferences.layout.set(layout); };
    };
    return {
        {"list-dark"},
        {"list-light-2x", false, 2},
        {"filtered-light", false, 1, [](PanelModel& model) { model.viewModel.insertText("re"); }},
        {"grouped-light", false, 1, inLayout(SwitcherLayout::grouped)},
        {"grid-dark", true, 1, inLayout(SwitcherLayout::grid)},
        {"no-match-dark", true, 1, [](PanelModel& model) { model.viewModel.insertText("zzz"); }},
        {"not-trusted-light", false, 1, [](PanelModel& model) { model.setTrusted(false); }},
    };
}

INSTANTIATE_TEST_SUITE_P(Pictures, PanelPictureTest, testing::ValuesIn(pictures()),
                         [](const testing::TestParamInfo<Picture>& picture) {
                             std::string name = picture.param.name;
                             std::replace(name.begin(), name.end(), '-', '_');
                             return name;
                         });

}  // namespace
}  // namespace ferrowyn

#include <gmock/gmock.h>

#include <QApplication>
#include <QDir>
#include <QFontInfo>
#include <cmath>
#include <functional>
#include <string>

#include "tests/ui/panel_model.h"
#include "ui/switcher_view.h"

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
constexpr double mostDiffering = 0.001;

struct Picture {
    std::string name;
    QSize size;
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
    view.resize(picture.size);
    view.synchronize();
    QImage image((QSizeF(picture.size) * picture.scale).toSize(), QImage::Format_RGB32);
    image.setDevicePixelRatio(picture.scale);
    image.fill(Qt::magenta);
    view.render(&image);
    image.setDevicePixelRatio(1);
    return image;
}

/// What differs in white, everything else faintly as it is.
QImage difference(const QImage& expected, const QImage& actual, int& differing) {
    QImage result(actual.size(), QImage::Format_RGB32);
    differing = 0;
    for (int y = 0; y < actual.height(); ++y) {
        for (int x = 0; x < actual.width(); ++x) {
            const QRgb is = actual.pixel(x, y);
            const QRgb was = expected.pixel(x, y);
            const bool differs = std::abs(qRed(is) - qRed(was)) > shade || std::abs(qGreen(is) - qGreen(was)) > shade ||
                                 std::abs(qBlue(is) - qBlue(was)) > shade;
            differing += differs ? 1 : 0;
            result.setPixel(x, y, differs ? qRgb(255, 255, 255) : qRgb(qRed(is) / 4, qGreen(is) / 4, qBlue(is) / 4));
        }
    }
    return result;
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
    int differing = actual.width() * actual.height();
    QImage marks = actual;
    if (expected.size() == actual.size()) {
        marks = difference(expected, actual, differing);
    }
    const double share = static_cast<double>(differing) / (static_cast<double>(actual.width()) * actual.height());
    if (share <= mostDiffering) {
        return;
    }
    QDir folder(QDir(QCoreApplication::applicationDirPath()).filePath(QStringLiteral("panel-pictures")));
    ASSERT_TRUE(folder.mkpath(QStringLiteral(".")));
    const QString shown = folder.filePath(name + "-actual.png");
    const QString marked = folder.filePath(name + "-difference.png");
    ASSERT_TRUE(actual.save(shown) && marks.save(marked));
    ADD_FAILURE() << differing << " of " << actual.width() * actual.height() << " pixels are not those of "
                  << kept.toStdString() << "\nnow:        " << shown.toStdString()
                  << "\ndifference: " << marked.toStdString()
                  << "\nIf it looks as it should, run scripts/renew_pictures.sh.";
}

std::vector<Picture> pictures() {
    const auto inLayout = [](SwitcherLayout layout) {
        return [layout](PanelModel& model) { model.preferences.layout.set(layout); };
    };
    const QSize list(640, 56 + 16 + 6 * 53 + 34);
    return {
        {"list-dark", list},
        {"list-light-2x", list, false, 2},
        {"filtered-light",
         {640, 56 + 16 + 2 * 53 + 34},
         false,
         1,
         [](PanelModel& model) { model.viewModel.insertText("re"); }},
        {"grouped-light", {640, 56 + 16 + 6 * 53 + 5 * 28 + 34}, false, 1, inLayout(SwitcherLayout::grouped)},
        {"grid-dark", {760, 56 + 16 + 2 * 110 + 34}, true, 1, inLayout(SwitcherLayout::grid)},
        {"no-match-dark", {640, 188 + 34}, true, 1, [](PanelModel& model) { model.viewModel.insertText("zzz"); }},
        {"not-trusted-light", {640, 188 + 34}, false, 1, [](PanelModel& model) { model.setTrusted(false); }},
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

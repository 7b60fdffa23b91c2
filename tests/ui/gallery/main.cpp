// Renders the panel, the menu and the windows in many states to PNG files, for looking at: ferrowyn_gallery <folder>
// [<font family>].

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QImage>
#include <QPainter>
#include <cstdio>
#include <functional>
#include <string>

#include "tests/ui/gallery/menu_shots.h"
#include "tests/ui/gallery/sheets.h"
#include "tests/ui/gallery/window_pictures.h"
#include "tests/ui/interface_models.h"
#include "ui/panel/switcher_view.h"

namespace {

using ferrowyn::AppWindow;
using ferrowyn::SwitcherLayout;
using ferrowyn::SwitcherView;
using ferrowyn::test::PanelModel;

enum class Scheme { light, dark };

std::vector<AppWindow> nineWindows() {
    std::vector<AppWindow> list{
        PanelModel::window(1, 1, "Writer", "Quarterly report — draft 3"),
        PanelModel::window(2, 2, "Code", "switcher_controller.cpp — ferrowyn"),
        PanelModel::window(3, 3, "Thunderbird", "Inbox (12) — Mail"),
        PanelModel::window(4, 4, "Terminal", "ssh build@larkmoor: ~/src/ferrowyn 🚀👩‍💻"),
        PanelModel::window(5, 5, "Firefox", "Pull requests · larkmoor/ferrowyn"),
        PanelModel::window(6, 1, "Writer", "発表資料 — 第三四半期の見通し.odp"),
        PanelModel::window(7, 7, "Files", "Downloads"),
        PanelModel::window(8, 8,
                           "An Image Editor with an Uncommonly Long Name for the Whole Family and its Friends "
                           "who will never finish reading it",
                           "panel-background.xcf-3.0 (RGB color 8-bit) 2560×1600 with a very long title that goes on "
                           "and on"),
        PanelModel::window(9, 5, "Firefox",
                           "مذكرات الاجتماع — سجل النقاشات الطويلة التي لا تنتهي أبدا في هذا اليوم الطويل جدا جدا جدا"),
        PanelModel::window(10, 4, "Terminal", "שלום עולם — vim"),
        PanelModel::window(11, 11, "Maps", "\xE2\x80\x8B\xE2\x80\x8B"),
        PanelModel::window(12, 12, "Notes", "line one\nline two\tafter a tab"),
    };
    list[2].isOnActiveSpace = false;
    list[5].isFullScreen = true;
    list[6].isMinimized = true;
    list[7].isOnActiveSpace = false;
    return list;
}

QPalette palette(Scheme scheme) {
    QPalette palette;
    palette.setColor(QPalette::Window, scheme == Scheme::dark ? QColor(0x2A, 0x2A, 0x2E) : QColor(0xF4, 0xF4, 0xF4));
    return palette;
}

struct Shot {
    std::string name;
    Scheme scheme = Scheme::dark;
    double scale = 2;
    bool isTranslucent = true;
    std::function<void(PanelModel&)> arrange = [](PanelModel&) {};
};

QImage photograph(const Shot& shot, bool isTimed) {
    PanelModel model;
    model.favourites.identifiers.set({"Code", "Terminal"});
    model.show(nineWindows());
    model.viewModel.beginSession(false);
    SwitcherView view(model.viewModel, model.preferences, ferrowyn::linuxTexts(), {});
    view.setPalette(palette(shot.scheme));
    view.setBackground(shot.isTranslucent ? ferrowyn::PanelBackground::translucent : ferrowyn::PanelBackground::opaque);
    shot.arrange(model);
    const ferrowyn::Size panelSize = model.panelSize();
    const QSize size(static_cast<int>(panelSize.width), static_cast<int>(panelSize.height));
    view.resize(size);
    view.synchronize();
    QImage panel((QSizeF(size) * shot.scale).toSize(), QImage::Format_ARGB32_Premultiplied);
    panel.setDevicePixelRatio(shot.scale);
    panel.fill(Qt::transparent);
    for (int frame = 0; frame < (isTimed ? 21 : 1); ++frame) {
        QElapsedTimer timer;
        timer.start();
        view.render(&panel, QPoint(), QRegion(), QWidget::RenderFlags());
        if (isTimed && (frame == 0 || frame == 20)) {
            std::printf("%-24s frame %2d: %6.2f ms\n", shot.name.c_str(), frame,
                        static_cast<double>(timer.nsecsElapsed()) / 1e6);
        }
    }
    const int margin = 24;
    QImage picture((QSizeF(size + QSize(2 * margin, 2 * margin)) * shot.scale).toSize(), QImage::Format_RGB32);
    picture.setDevicePixelRatio(shot.scale);
    QPainter painter(&picture);
    QLinearGradient desktop(0, 0, size.width(), size.height());
    desktop.setColorAt(0, QColor(0x2A, 0x4A, 0x63));
    desktop.setColorAt(1, QColor(0x6A, 0x3B, 0x63));
    painter.fillRect(QRect(0, 0, size.width() + 2 * margin, size.height() + 2 * margin), desktop);
    painter.drawImage(QPointF(margin, margin), panel);
    return picture;
}

std::vector<Shot> shots() {
    const auto inLayout = [](SwitcherLayout layout) {
        return [layout](PanelModel& model) { model.preferences.layout.set(layout); };
    };
    const auto typed = [](std::string query) {
        return [query](PanelModel& model) { model.viewModel.insertText(query); };
    };
    const auto many = [](PanelModel& model) {
        model.viewModel.endSession();
        model.show(PanelModel::windows(200, 7));
        model.viewModel.beginSession(false);
        model.viewModel.move(100);
    };
    return {
        {"list-dark", Scheme::dark},
        {"list-light", Scheme::light},
        {"list-dark-1x", Scheme::dark, 1},
        {"list-light-1x", Scheme::light, 1},
        {"list-dark-1.25x", Scheme::dark, 1.25},
        {"list-light-1.5x", Scheme::light, 1.5},
        {"list-dark-opaque", Scheme::dark, 1, false},
        {"list-light-opaque", Scheme::light, 1, false},
        {"list-scrolled-to-the-end", Scheme::light, 2, true,
         [](PanelModel& model) { model.viewModel.moveToEdge(false); }},
        {"filtered-dark", Scheme::dark, 2, true, typed("re")},
        {"filtered-light", Scheme::light, 2, true, typed("re")},
        {"grouped-dark", Scheme::dark, 2, true, inLayout(SwitcherLayout::grouped)},
        {"grouped-light", Scheme::light, 2, true, inLayout(SwitcherLayout::grouped)},
        {"grid-dark", Scheme::dark, 2, true, inLayout(SwitcherLayout::grid)},
        {"grid-light", Scheme::light, 2, true, inLayout(SwitcherLayout::grid)},
        {"grid-dark-1x", Scheme::dark, 1, true, inLayout(SwitcherLayout::grid)},
        {"no-windows", Scheme::light, 2, true,
         [](PanelModel& model) {
             model.viewModel.endSession();
             model.show({});
             model.viewModel.beginSession(false);
         }},
        {"no-match", Scheme::dark, 2, true, typed("zzz")},
        {"permission-dark", Scheme::dark, 2, true, [](PanelModel& model) { model.setTrusted(false); }},
        {"permission-light", Scheme::light, 2, true, [](PanelModel& model) { model.setTrusted(false); }},
        {"one-row", Scheme::dark, 2, true,
         [](PanelModel& model) {
             model.viewModel.endSession();
             model.show({nineWindows().front()});
             model.viewModel.beginSession(false);
         }},
        {"200-rows-scrolled", Scheme::dark, 2, true, many},
        {"no-footer", Scheme::light, 1, true,
         [](PanelModel& model) { model.preferences.showShortcutHints.set(false); }},
    };
}

}  // namespace

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    if (argc < 2) {
        std::fprintf(stderr, "usage: ferrowyn_gallery <folder> [<font family>] [--time]\n");
        return 2;
    }
    const QDir folder(QString::fromLocal8Bit(argv[1]));
    if (!folder.mkpath(QStringLiteral("."))) {
        std::fprintf(stderr, "cannot make the folder %s\n", argv[1]);
        return 1;
    }
    if (argc > 2) {
        QApplication::setFont(QFont(QString::fromLocal8Bit(argv[2])));
    }
    bool isSaved = ferrowyn::gallery::saveMenuShots(folder) && ferrowyn::test::drawWindows(folder);
    for (const auto& shot : shots()) {
        isSaved =
            photograph(shot, argc > 3).save(folder.filePath(QString::fromStdString(shot.name + ".png"))) && isSaved;
    }
    isSaved = ferrowyn::gallery::saveSheets(folder) && isSaved;
    return isSaved ? 0 : 1;
}

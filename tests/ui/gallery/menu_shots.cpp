#include "tests/ui/gallery/menu_shots.h"

#include <QCoreApplication>
#include <QDir>
#include <QImage>
#include <QMouseEvent>
#include <QPainter>
#include <QPalette>
#include <array>
#include <optional>
#include <string>

#include "tests/ui/status_menu_model.h"
#include "ui/menu/popup_status_item.h"
#include "ui/menu/status_menu_popup.h"

namespace ferrowyn::gallery {
namespace {

enum class Scheme { light, dark };

QPalette palette(Scheme scheme) {
    QPalette palette;
    palette.setColor(QPalette::Window, scheme == Scheme::dark ? QColor(0x2A, 0x2A, 0x2E) : QColor(0xF4, 0xF4, 0xF4));
    return palette;
}

struct Shot {
    test::Health health;
    Scheme scheme;
    double scale;
    bool isTranslucent = true;
    /// Title of the row under the pointer.
    std::string selected;
    bool isGearHovered = false;
    Qt::LayoutDirection direction = Qt::LeftToRight;
};

QImage photograph(const Shot& shot) {
    const StatusMenu menu = test::statusMenu(shot.health, linuxStatusItemTexts());
    StatusMenuPopup popup(menu, linuxTexts(), shot.isTranslucent);
    popup.setPalette(palette(shot.scheme));
    popup.setLayoutDirection(shot.direction);
    popup.select(test::rowTitled(menu, shot.selected));
    if (shot.isGearHovered) {
        const Rect gear = popup.gearRect(0);
        const QPointF place(gear.midX(), gear.midY());
        QMouseEvent press(QEvent::MouseButtonPress, place, popup.mapToGlobal(place), Qt::LeftButton, Qt::LeftButton,
                          Qt::NoModifier);
        QCoreApplication::sendEvent(&popup, &press);
    }
    constexpr int margin = 16;
    const QSize size = popup.size() + QSize(2 * margin, 2 * margin);
    QImage picture((QSizeF(size) * shot.scale).toSize(), QImage::Format_ARGB32_Premultiplied);
    picture.setDevicePixelRatio(shot.scale);
    picture.fill(QColor(0x5A, 0x6B, 0x80));
    popup.render(&picture, QPoint(margin, margin), QRegion(), QWidget::RenderFlags());
    return picture;
}

bool save(const QDir& folder, const Shot& shot, const std::string& note = {}) {
    const QString name = QStringLiteral("menu-%1-%2-%3x%4.png")
                             .arg(test::nameOf(shot.health))
                             .arg(shot.scheme == Scheme::dark ? "dark" : "light")
                             .arg(shot.scale)
                             .arg(QString::fromStdString(note));
    return photograph(shot).save(folder.filePath(name));
}

/// The icons of the tray on trays of both kinds, in the colour of text and in one that the tray has named.
bool saveTrayIcons(const QDir& folder) {
    constexpr int cell = 32;
    const std::array symbols{"macwindow.on.rectangle", "exclamationmark.triangle", "keyboard.badge.ellipsis"};
    const std::array grounds{QColor(0xF0, 0xF0, 0xF0), QColor(0x2B, 0x2B, 0x2B), QColor(0x80, 0x80, 0x80)};
    const std::array sides{16, 22, 24};
    QImage picture(cell * static_cast<int>(symbols.size() * sides.size()), cell * static_cast<int>(grounds.size()),
                   QImage::Format_RGB32);
    QPainter painter(&picture);
    for (int row = 0; row < static_cast<int>(grounds.size()); ++row) {
        painter.fillRect(0, row * cell, picture.width(), cell, grounds.at(static_cast<std::size_t>(row)));
        int left = 0;
        for (const char* const symbol : symbols) {
            for (const int side : sides) {
                painter.drawImage(left + (cell - side) / 2, row * cell + (cell - side) / 2,
                                  traySymbol(symbol, side, std::nullopt));
                left += cell;
            }
        }
    }
    return picture.save(folder.filePath(QStringLiteral("tray-icons.png")));
}

}  // namespace

bool saveMenuShots(const QDir& folder) {
    bool isSaved = saveTrayIcons(folder);
    for (const auto health : test::allHealths) {
        for (const auto scheme : {Scheme::light, Scheme::dark}) {
            for (const double scale : {1.0, 2.0}) {
                isSaved = save(folder, {health, scheme, scale}) && isSaved;
            }
        }
    }
    for (const auto scheme : {Scheme::light, Scheme::dark}) {
        const Shot selected{test::Health::ready, scheme, 2, true, "Open Switcher"};
        const Shot quit{test::Health::ready, scheme, 1, false, "Quit Ferrowyn"};
        const Shot gear{test::Health::trustRevoked, scheme, 2, true, {}, true};
        const Shot mirrored{test::Health::secureInput, scheme, 2, true, {}, false, Qt::RightToLeft};
        isSaved = save(folder, mirrored, "-right-to-left") && isSaved;
        isSaved = save(folder, selected, "-selected") && save(folder, quit, "-opaque") && save(folder, gear, "-gear") &&
                  isSaved;
    }
    return isSaved;
}

}  // namespace ferrowyn::gallery

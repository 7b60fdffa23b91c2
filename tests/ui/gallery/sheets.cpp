#include "tests/ui/gallery/sheets.h"

#include <QImage>
#include <QPainter>
#include <QPainterPath>
#include <QString>
#include <QStringList>
#include <algorithm>
#include <optional>
#include <utility>
#include <vector>

namespace ferrowyn::gallery {

namespace {

constexpr int margin = 24;
const QColor ground(0x5A, 0x6B, 0x80);

struct Sheet {
    QString name;
    int columns;
    QStringList pictures;
    /// Of the corners of each picture; menus bring their own.
    double cornerRadius = 8;
};

QStringList withEnding(QStringList names, const QString& ending) {
    for (QString& name : names) {
        name += ending;
    }
    return names;
}

std::vector<Sheet> sheets() {
    std::vector<Sheet> all;
    for (const QString& scheme : {QStringLiteral("light"), QStringLiteral("dark")}) {
        const auto window = [&scheme](const QStringList& names, const QString& scale = {}) {
            return withEnding(names, QLatin1Char('-') + scheme + scale);
        };
        all.push_back(
            {QStringLiteral("settings-") + scheme, 3,
             window({"window-settings-general", "window-settings-shortcut", "window-settings-appearance",
                     "window-settings-windows", "window-settings-favourites-crowded", "window-settings-about"})});
        all.push_back({QStringLiteral("setup-") + scheme, 3,
                       window({"window-setup-granted", "window-setup-required", "window-about"})});
        all.push_back({QStringLiteral("menu-") + scheme, 5,
                       window({"menu-ready", "menu-access-required", "menu-trust-revoked", "menu-repeated-timeouts",
                               "menu-secure-input"},
                              QStringLiteral("-1x")),
                       0});
    }
    all.push_back(
        {QStringLiteral("menu-2x"), 2, {"menu-ready-light-2x-selected", "menu-trust-revoked-dark-2x-gear"}, 0});
    all.push_back({QStringLiteral("settings-2x"),
                   2,
                   {"window-settings-general-untrusted-light-2x", "window-settings-shortcut-command-dark-2x"},
                   16});
    all.push_back({QStringLiteral("settings-right-to-left"),
                   2,
                   {"window-settings-general-right-to-left-light", "window-setup-required-right-to-left-light"}});
    return all;
}

std::optional<std::vector<QImage>> load(const QDir& folder, const QStringList& names) {
    std::vector<QImage> images;
    for (const QString& name : names) {
        images.emplace_back(folder.filePath(name + QStringLiteral(".png")));
        if (images.back().isNull()) {
            return std::nullopt;
        }
    }
    return images;
}

QImage compose(const Sheet& sheet, const std::vector<QImage>& images) {
    const int columns = std::min(sheet.columns, static_cast<int>(images.size()));
    QSize cell;
    for (const QImage& image : images) {
        cell = cell.expandedTo(image.size());
    }
    const int rows = (static_cast<int>(images.size()) + columns - 1) / columns;
    QImage picture(columns * (cell.width() + margin) + margin, rows * (cell.height() + margin) + margin,
                   QImage::Format_RGB32);
    picture.fill(ground);
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing);
    for (int index = 0; index < static_cast<int>(images.size()); ++index) {
        const QImage& image = images[static_cast<std::size_t>(index)];
        const QPoint place(margin + index % columns * (cell.width() + margin),
                           margin + index / columns * (cell.height() + margin));
        QPainterPath shape;
        shape.addRoundedRect(QRectF(place, image.size()), sheet.cornerRadius, sheet.cornerRadius);
        painter.setClipPath(shape);
        painter.drawImage(place, image);
        painter.setClipping(false);
    }
    return picture;
}

}  // namespace

bool saveSheets(const QDir& folder) {
    const QDir target(folder.filePath(QStringLiteral("sheets")));
    bool isSaved = target.mkpath(QStringLiteral("."));
    for (const Sheet& sheet : sheets()) {
        const auto images = load(folder, sheet.pictures);
        isSaved =
            images && compose(sheet, *images).save(target.filePath(sheet.name + QStringLiteral(".png"))) && isSaved;
    }
    return isSaved;
}

}  // namespace ferrowyn::gallery

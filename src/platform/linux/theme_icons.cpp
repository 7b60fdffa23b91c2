#include "platform/linux/theme_icons.h"

#include <QIcon>
#include <QImageReader>
#include <QSettings>
#include <QString>
#include <array>
#include <filesystem>
#include <optional>
#include <string>
#include <system_error>

#include "platform/linux/xdg_folders.h"
#include "platform/qt/qt_icons.h"

namespace ferrowyn {

namespace {

constexpr std::array<std::string_view, 4> imageSuffixes{".svg", ".png", ".xpm", ".svgz"};

bool isFile(const std::filesystem::path& path) {
    std::error_code error;
    return std::filesystem::is_regular_file(path, error);
}

bool isInstalledTheme(const QString& name, const XdgFolders& folders) {
    for (const auto& folder : folders.allDataDirs()) {
        if (isFile(folder / "icons" / name.toStdString() / "index.theme")) {
            return true;
        }
    }
    return false;
}

/// Desktops tell Qt which icon theme the user chose; a bare window manager does not. Then the theme chosen for GTK
/// programs is taken, or the first of the common themes that is installed.
void chooseTheme() {
    if (const auto name = QIcon::themeName(); !name.isEmpty() && name != "hicolor") {
        return;
    }
    const auto folders = XdgFolders::fromEnvironment();
    const QSettings gtk(QString::fromStdString((folders.configHome / "gtk-3.0/settings.ini").string()),
                        QSettings::IniFormat);
    for (const auto& name : {gtk.value("Settings/gtk-icon-theme-name").toString(), QString("breeze"),
                             QString("Papirus"), QString("Adwaita")}) {
        if (!name.isEmpty() && isInstalledTheme(name, folders)) {
            QIcon::setThemeName(name);
            return;
        }
    }
    // Without a theme name Qt does not search the hicolor theme either.
    QIcon::setThemeName("hicolor");
}

std::optional<std::filesystem::path> pixmapFile(const std::string& name) {
    for (const auto& folder : XdgFolders::fromEnvironment().allDataDirs()) {
        for (const auto suffix : imageSuffixes) {
            auto file = folder / "pixmaps" / (name + std::string(suffix));
            if (isFile(file)) {
                return file;
            }
        }
    }
    return std::nullopt;
}

std::shared_ptr<const IconImage> imageFromFile(const std::filesystem::path& file) {
    const auto path = QString::fromStdString(file.string());
    // QIcon accepts a broken file and then shows nothing.
    if (!isFile(file) || !QImageReader(path).canRead()) {
        return nullptr;
    }
    return std::make_shared<const QtIconImage>(QIcon(path));
}

/// Some desktop entries name an image file instead of an icon of the theme.
std::string withoutImageSuffix(std::string_view name) {
    for (const auto suffix : imageSuffixes) {
        if (name.ends_with(suffix)) {
            name.remove_suffix(suffix.size());
            break;
        }
    }
    return std::string(name);
}

}  // namespace

std::shared_ptr<const IconImage> themeIcon(std::string_view nameOrPath) {
    if (nameOrPath.empty()) {
        return nullptr;
    }
    if (nameOrPath.starts_with('/')) {
        return imageFromFile(std::filesystem::path(nameOrPath));
    }
    static const bool isThemeChosen = (chooseTheme(), true);
    static_cast<void>(isThemeChosen);
    const auto name = withoutImageSuffix(nameOrPath);
    auto icon = QIcon::fromTheme(QString::fromStdString(name));
    if (!icon.isNull() && !icon.availableSizes().isEmpty()) {
        return std::make_shared<const QtIconImage>(std::move(icon));
    }
    if (const auto file = pixmapFile(name)) {
        return imageFromFile(*file);
    }
    // The theme knows the name but has no sizes listed for it; the icon may still draw.
    return icon.isNull() ? nullptr : std::make_shared<const QtIconImage>(std::move(icon));
}

}  // namespace ferrowyn

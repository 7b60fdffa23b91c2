#include "platform/linux/theme_files.h"

#include <QString>
#include <QStringList>
#include <array>
#include <charconv>
#include <string_view>
#include <system_error>
#include <utility>

#include "platform/linux/atomic_file.h"

namespace ferrowyn {

namespace {

namespace fs = std::filesystem;

constexpr std::size_t largestFile = 1U << 20U;

std::string_view trimmed(std::string_view text) {
    constexpr std::string_view blanks = " \t\r";
    const auto first = text.find_first_not_of(blanks);
    return first == std::string_view::npos ? std::string_view()
                                           : text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

/// The value of a key in a group, read as the two toolkits read their files: whatever else stands there is not looked
/// at, and the last value counts.
std::optional<std::string> valueIn(std::string_view text, std::string_view group, std::string_view key) {
    std::optional<std::string> value;
    bool isInGroup = false;
    while (!text.empty()) {
        const auto end = text.find('\n');
        const auto line = trimmed(text.substr(0, end));
        text = end == std::string_view::npos ? std::string_view() : text.substr(end + 1);
        if (line.starts_with('[')) {
            isInGroup = line.size() == group.size() + 2 && line.substr(1, group.size()) == group && line.ends_with(']');
        } else if (const auto equals = line.find('=');
                   isInGroup && equals != std::string_view::npos && trimmed(line.substr(0, equals)) == key) {
            value = std::string(trimmed(line.substr(equals + 1)));
        }
    }
    return value;
}

std::optional<std::string> valueIn(const std::vector<std::string>& texts, std::string_view group,
                                   std::string_view key) {
    for (const auto& text : texts) {
        if (auto value = valueIn(text, group, key)) {
            return value;
        }
    }
    return std::nullopt;
}

/// "red,green,blue", perhaps with an opacity behind.
std::optional<RgbColor> colorFrom(const std::optional<std::string>& value) {
    if (!value) {
        return std::nullopt;
    }
    std::string_view rest = *value;
    std::array<std::uint8_t, 3> parts{};
    for (auto& part : parts) {
        const auto comma = rest.find(',');
        const auto number = trimmed(rest.substr(0, comma));
        const auto [end, error] = std::from_chars(number.data(), number.data() + number.size(), part);
        if (error != std::errc() || end != number.data() + number.size()) {
            return std::nullopt;
        }
        rest = comma == std::string_view::npos ? std::string_view() : rest.substr(comma + 1);
    }
    return RgbColor{parts[0], parts[1], parts[2]};
}

std::vector<std::string> contentsOf(const std::vector<fs::path>& files) {
    std::vector<std::string> contents;
    for (const auto& file : files) {
        std::error_code error;
        contents.push_back(readFile(file, largestFile, error));
    }
    return contents;
}

std::vector<fs::path> inEach(const XdgFolders& folders, const fs::path& relative) {
    std::vector<fs::path> files{folders.configHome / relative};
    for (const auto& folder : folders.configDirs) {
        files.push_back(folder / relative);
    }
    return files;
}

std::vector<fs::path> gtkFilesIn(const XdgFolders& folders) {
    auto files = inEach(folders, "gtk-3.0/settings.ini");
    files.emplace_back("/etc/gtk-3.0/settings.ini");
    return files;
}

/// The user's alone: the system's hardly ever change, and never while a session runs.
std::vector<fs::path> watchedFolders(const XdgFolders& folders) {
    return {folders.configHome, folders.configHome / "gtk-3.0"};
}

}  // namespace

ThemeFiles::ThemeFiles(const XdgFolders& folders, std::function<void()> changed)
    : plasmaFiles_(inEach(folders, "kdeglobals")),
      gtkFiles_(gtkFilesIn(folders)),
      folderWatcher_(watchedFolders(folders), [this, changed] {
          watchFiles();
          changed();
      }) {
    QObject::connect(&fileWatcher_, &QFileSystemWatcher::fileChanged, &fileWatcher_, [this, told = std::move(changed)] {
        watchFiles();
        told();
    });
    watchFiles();
}

void ThemeFiles::watchFiles() {
    for (const auto& file : {plasmaFiles_.front(), gtkFiles_.front()}) {
        const auto path = QString::fromStdString(file.string());
        std::error_code error;
        // A file that was replaced is no longer the one that is watched.
        if (fs::is_regular_file(file, error) && !fileWatcher_.files().contains(path)) {
            fileWatcher_.addPath(path);
        }
    }
}

void ThemeFiles::read(AppearanceSources& sources) const {
    const auto plasma = contentsOf(plasmaFiles_);
    sources.plasmaWindow = colorFrom(valueIn(plasma, "Colors:Window", "BackgroundNormal"));
    sources.plasmaAccent = colorFrom(valueIn(plasma, "General", "AccentColor"));
    if (!sources.plasmaAccent) {
        sources.plasmaAccent = colorFrom(valueIn(plasma, "Colors:Selection", "BackgroundNormal"));
    }
    const auto gtk = contentsOf(gtkFiles_);
    sources.gtkFileTheme = valueIn(gtk, "Settings", "gtk-theme-name");
    const auto prefersDark = valueIn(gtk, "Settings", "gtk-application-prefer-dark-theme");
    sources.gtkFilePrefersDark = prefersDark == "1" || prefersDark == "true" || prefersDark == "TRUE";
}

}  // namespace ferrowyn

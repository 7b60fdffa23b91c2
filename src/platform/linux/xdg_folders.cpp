#include "platform/linux/xdg_folders.h"

#include <pwd.h>
#include <unistd.h>

#include <QString>
#include <algorithm>
#include <cstdlib>
#include <system_error>
#include <utility>

namespace ferrowyn {

namespace {

std::filesystem::path absoluteFromEnvironment(const char* variable) {
    const char* text = std::getenv(variable);
    std::filesystem::path path(text == nullptr ? "" : text);
    return path.is_absolute() ? path : std::filesystem::path();
}

std::filesystem::path home() {
    if (auto path = absoluteFromEnvironment("HOME"); !path.empty()) {
        return path;
    }
    const passwd* user = getpwuid(getuid());
    return user != nullptr && user->pw_dir != nullptr ? user->pw_dir : "/";
}

std::vector<std::filesystem::path> absolutePaths(std::string_view colonSeparated) {
    std::vector<std::filesystem::path> paths;
    for (const auto& part : splitAtColons(colonSeparated)) {
        if (const std::filesystem::path path(part); path.is_absolute()) {
            paths.push_back(path);
        }
    }
    return paths;
}

}  // namespace

std::vector<std::string> splitAtColons(std::string_view list) {
    std::vector<std::string> parts;
    while (!list.empty()) {
        const auto end = std::min(list.find(':'), list.size());
        if (end > 0) {
            parts.emplace_back(list.substr(0, end));
        }
        list.remove_prefix(std::min(end + 1, list.size()));
    }
    return parts;
}

XdgFolders XdgFolders::fromEnvironment() {
    XdgFolders folders;
    folders.configHome = absoluteFromEnvironment("XDG_CONFIG_HOME");
    if (folders.configHome.empty()) {
        folders.configHome = home() / ".config";
    }
    folders.dataHome = absoluteFromEnvironment("XDG_DATA_HOME");
    if (folders.dataHome.empty()) {
        folders.dataHome = home() / ".local/share";
    }
    const char* dataDirs = std::getenv("XDG_DATA_DIRS");
    folders.dataDirs = absolutePaths(dataDirs == nullptr ? "" : dataDirs);
    if (folders.dataDirs.empty()) {
        folders.dataDirs = {"/usr/local/share", "/usr/share"};
    }
    const char* configDirs = std::getenv("XDG_CONFIG_DIRS");
    folders.configDirs = absolutePaths(configDirs == nullptr ? "" : configDirs);
    if (folders.configDirs.empty()) {
        folders.configDirs = {"/etc/xdg"};
    }
    return folders;
}

std::vector<std::filesystem::path> XdgFolders::allDataDirs() const {
    std::vector<std::filesystem::path> all{dataHome};
    all.insert(all.end(), dataDirs.begin(), dataDirs.end());
    return all;
}

namespace {

/// The folder, or the nearest existing folder above it, which changes when the missing one is made.
std::filesystem::path watchable(std::filesystem::path folder) {
    std::error_code error;
    while (!std::filesystem::is_directory(folder, error) && folder.has_relative_path()) {
        folder = folder.parent_path();
    }
    return folder;
}

}  // namespace

DesktopFolderWatcher::DesktopFolderWatcher(const std::vector<std::filesystem::path>& folders,
                                           std::function<void()> onChange) {
    QObject::connect(&watcher_, &QFileSystemWatcher::directoryChanged, &watcher_,
                     [this, onChange = std::move(onChange)](const QString& path) {
                         // A change above a missing folder matters only when it made that folder.
                         const bool isFolder = isOneOfTheFolders(path);
                         if (watchFolders() || isFolder) {
                             onChange();
                         }
                     });
    add(folders);
}

void DesktopFolderWatcher::add(const std::vector<std::filesystem::path>& folders) {
    for (const auto& folder : folders) {
        if (std::ranges::find(folders_, folder) == folders_.end()) {
            folders_.push_back(folder);
        }
    }
    watchFolders();
}

bool DesktopFolderWatcher::isOneOfTheFolders(const QString& path) const {
    return std::ranges::find(folders_, std::filesystem::path(path.toStdString())) != folders_.end();
}

bool DesktopFolderWatcher::watchFolders() {
    bool foundFolder = false;
    for (const auto& folder : folders_) {
        const auto path = QString::fromStdString(watchable(folder).string());
        if (!watcher_.directories().contains(path) && watcher_.addPath(path)) {
            foundFolder = foundFolder || isOneOfTheFolders(path);
        }
    }
    return foundFolder;
}

}  // namespace ferrowyn

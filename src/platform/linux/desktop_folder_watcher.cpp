#include "platform/linux/desktop_folder_watcher.h"

#include <QString>
#include <algorithm>
#include <system_error>
#include <utility>

namespace ferrowyn {

namespace {

/// The folder itself, or the nearest one above it that exists: that is where it would appear.
std::filesystem::path watchable(std::filesystem::path folder) {
    std::error_code error;
    while (!std::filesystem::is_directory(folder, error) && folder.has_relative_path()) {
        folder = folder.parent_path();
    }
    return folder;
}

}  // namespace

DesktopFolderWatcher::DesktopFolderWatcher(const std::vector<std::filesystem::path>& folders,
                                           std::function<void()> changed) {
    QObject::connect(&watcher_, &QFileSystemWatcher::directoryChanged, &watcher_,
                     [this, changed = std::move(changed)](const QString& path) {
                         // Above a missing folder only one thing matters: that the folder is there now.
                         const bool isFolder = isOneOfTheFolders(path);
                         if (watchFolders() || isFolder) {
                             changed();
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

#pragma once

#include <QFileSystemWatcher>
#include <filesystem>
#include <functional>
#include <vector>

namespace ferrowyn {

/// Tells when something is added to, removed from or renamed in some folders, also when a folder itself comes or goes.
/// Main thread; nothing polls.
class DesktopFolderWatcher {
public:
    DesktopFolderWatcher(const std::vector<std::filesystem::path>& folders, std::function<void()> changed);
    DesktopFolderWatcher(const DesktopFolderWatcher&) = delete;
    DesktopFolderWatcher& operator=(const DesktopFolderWatcher&) = delete;

    /// Watches these too; the ones watched already are left alone.
    void add(const std::vector<std::filesystem::path>& folders);

private:
    [[nodiscard]] bool isOneOfTheFolders(const QString& path) const;
    /// Whether one of the folders is watched now that was not before.
    bool watchFolders();

    std::vector<std::filesystem::path> folders_;
    QFileSystemWatcher watcher_;
};

}  // namespace ferrowyn

#pragma once

#include <QFileSystemWatcher>
#include <filesystem>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace ferrowyn {

/// The parts of a list in the environment (XDG_CURRENT_DESKTOP, PATH) that colons separate. Empty parts are left out.
[[nodiscard]] std::vector<std::string> splitAtColons(std::string_view list);

/// Where a user's files and the system's shared files lie. Relative paths in the environment are ignored.
struct XdgFolders {
    std::filesystem::path configHome;
    std::filesystem::path dataHome;
    /// In the order of their importance, after `dataHome`.
    std::vector<std::filesystem::path> dataDirs;
    /// In the order of their importance, after `configHome`.
    std::vector<std::filesystem::path> configDirs;

    [[nodiscard]] static XdgFolders fromEnvironment();
    /// `dataHome`, then `dataDirs`.
    [[nodiscard]] std::vector<std::filesystem::path> allDataDirs() const;
};

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

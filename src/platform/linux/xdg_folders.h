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

/// The folders of the XDG base directories. Relative paths in the environment are ignored.
struct XdgFolders {
    std::filesystem::path configHome;
    std::filesystem::path dataHome;
    /// The system's data folders, most important first; `dataHome` comes before them.
    std::vector<std::filesystem::path> dataDirs;
    /// The system's configuration folders, most important first; `configHome` comes before them.
    std::vector<std::filesystem::path> configDirs;

    [[nodiscard]] static XdgFolders fromEnvironment();
    /// `dataHome`, then `dataDirs`.
    [[nodiscard]] std::vector<std::filesystem::path> allDataDirs() const;
};

/// Reports when a file is added to, removed from or renamed in some folders, and when a folder appears or disappears.
/// Uses inotify through Qt, without polling. Main thread.
class DesktopFolderWatcher {
public:
    DesktopFolderWatcher(const std::vector<std::filesystem::path>& folders, std::function<void()> onChange);
    DesktopFolderWatcher(const DesktopFolderWatcher&) = delete;
    DesktopFolderWatcher& operator=(const DesktopFolderWatcher&) = delete;

    /// Watches these folders too. Folders that are watched already are ignored.
    void add(const std::vector<std::filesystem::path>& folders);

private:
    [[nodiscard]] bool isOneOfTheFolders(const QString& path) const;
    /// True when this call began to watch one of the folders.
    bool watchFolders();

    std::vector<std::filesystem::path> folders_;
    QFileSystemWatcher watcher_;
};

}  // namespace ferrowyn

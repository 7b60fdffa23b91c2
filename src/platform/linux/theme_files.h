#pragma once

#include <QFileSystemWatcher>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "core/desktop_appearance.h"
#include "platform/linux/desktop_folder_watcher.h"
#include "platform/linux/xdg_folders.h"

namespace ferrowyn {

/// The files in which desktops keep the colours and the theme of their windows: KDE's kdeglobals, and GTK's
/// settings.ini. The user's own win over the system's. Main thread; nothing polls.
class ThemeFiles {
public:
    /// `changed` is called when one of the files may say something else now.
    ThemeFiles(const XdgFolders& folders, std::function<void()> changed);
    ThemeFiles(const ThemeFiles&) = delete;
    ThemeFiles& operator=(const ThemeFiles&) = delete;

    /// Sets what the files tell, and leaves the rest alone. Reads a few small files.
    void read(AppearanceSources& sources) const;

private:
    void watchFiles();

    /// The most important first.
    std::vector<std::filesystem::path> plasmaFiles_;
    std::vector<std::filesystem::path> gtkFiles_;
    /// Of a file that is written in place only the file itself tells; of one that is replaced, its folder.
    QFileSystemWatcher fileWatcher_;
    DesktopFolderWatcher folderWatcher_;
};

}  // namespace ferrowyn

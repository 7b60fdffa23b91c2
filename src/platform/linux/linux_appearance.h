#pragma once

#include <QFileSystemWatcher>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "core/desktop_appearance.h"
#include "core/posted_work.h"
#include "core/published.h"
#include "platform/linux/xdg_folders.h"

namespace ferrowyn {

class BusThread;
class MainLoop;

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

/// What the desktop says about its appearance, as it is now: from the settings portal, from the files of its themes,
/// and from whoever speaks to the XSETTINGS manager. Main thread; the bus is spoken to on a thread of its own.
class LinuxAppearance {
public:
    struct Options {
        XdgFolders folders;
        /// The session bus's, where there is one.
        std::optional<std::string> busAddress;
        /// As in XDG_CURRENT_DESKTOP: names with colons between them.
        std::string currentDesktop;
        [[nodiscard]] static Options fromEnvironment();
    };

    explicit LinuxAppearance(MainLoop& mainLoop, const Options& options = Options::fromEnvironment());
    ~LinuxAppearance();
    LinuxAppearance(const LinuxAppearance&) = delete;
    LinuxAppearance& operator=(const LinuxAppearance&) = delete;

    [[nodiscard]] const Published<AppearanceSources>& sources() const { return sources_; }
    /// Nothing when no XSETTINGS manager runs.
    void setXsettingsTheme(std::optional<std::string> name);

private:
    void readFiles();
    void startListening(MainLoop& mainLoop, const std::string& busAddress);

    Published<AppearanceSources> sources_;
    ThemeFiles files_;
    /// Dies with this object, for those that must notice on the main thread.
    LifeToken life_;
    std::unique_ptr<BusThread> portal_;
};

}  // namespace ferrowyn

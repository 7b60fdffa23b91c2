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

/// Reads the files in which desktops keep the colours and the theme of windows, KDE's kdeglobals and GTK's
/// settings.ini, and watches them. The user's files win over the system's. Main thread; owned by `LinuxAppearance`.
class ThemeFiles {
public:
    /// `onChange` is called when the content of one of the files may have changed.
    ThemeFiles(const XdgFolders& folders, std::function<void()> onChange);
    ThemeFiles(const ThemeFiles&) = delete;
    ThemeFiles& operator=(const ThemeFiles&) = delete;

    /// Sets the fields that come from these files and leaves the others as they are. Reads a few small files.
    void read(AppearanceSources& sources) const;

private:
    void watchFiles();

    /// The most important first.
    std::vector<std::filesystem::path> plasmaFiles_;
    std::vector<std::filesystem::path> gtkFiles_;
    /// Reports a file that is written in place; `folderWatcher_` reports one that is replaced.
    QFileSystemWatcher fileWatcher_;
    DesktopFolderWatcher folderWatcher_;
};

/// Publishes what the desktop says about its appearance: from the settings portal, from the theme files, and from
/// XSETTINGS (which the X11 adapter passes in). Main thread; the bus is used on a second thread.
class LinuxAppearance {
public:
    struct Options {
        XdgFolders folders;
        /// Of the session bus; nullopt where there is none.
        std::optional<std::string> busAddress;
        /// The content of XDG_CURRENT_DESKTOP: names separated by colons.
        std::string currentDesktop;
        [[nodiscard]] static Options fromEnvironment();
    };

    explicit LinuxAppearance(MainLoop& mainLoop, const Options& options = Options::fromEnvironment());
    ~LinuxAppearance();
    LinuxAppearance(const LinuxAppearance&) = delete;
    LinuxAppearance& operator=(const LinuxAppearance&) = delete;

    [[nodiscard]] const Published<AppearanceSources>& sources() const { return sources_; }
    /// Sets the theme's name from XSETTINGS; nullopt when no XSETTINGS manager runs.
    void setXsettingsTheme(std::optional<std::string> name);

private:
    void readFiles();
    void startListening(MainLoop& mainLoop, const std::string& busAddress);

    Published<AppearanceSources> sources_;
    ThemeFiles files_;
    /// What the bus thread posts may arrive after this object is destroyed.
    LifeToken life_;
    std::unique_ptr<BusThread> portal_;
};

}  // namespace ferrowyn

#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "core/desktop_appearance.h"
#include "core/published.h"
#include "platform/linux/theme_files.h"
#include "platform/linux/xdg_folders.h"

namespace ferrowyn {

class BusThread;
class MainLoop;

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
    std::shared_ptr<bool> alive_ = std::make_shared<bool>(true);
    std::unique_ptr<BusThread> portal_;
};

}  // namespace ferrowyn

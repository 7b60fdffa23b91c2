#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "core/app_window.h"
#include "core/geometry.h"
#include "core/posted_work.h"
#include "core/published.h"

namespace ferrowyn {

class IconImage;
class IconSource;
class MainLoop;
class Workspace;

/// An application icon with the size, in points, at which it is shown.
struct Icon {
    std::shared_ptr<const IconImage> image;
    Size size{32, 32};
};

/// Application icons, cached per application until it quits, or until it gives itself another one. Main thread.
class IconProvider {
public:
    IconProvider(IconSource& source, Workspace& workspace);

    /// Never fails: a generic application icon is the last resort.
    [[nodiscard]] const Icon& icon(const AppWindow& window);
    /// Whether the icon is there without loading anything.
    [[nodiscard]] bool holds(const AppWindow& window) const;
    /// Forgets every icon.
    void removeAll();

    /// An icon was forgotten because the process with this id gives itself another one.
    [[nodiscard]] const Subject<Pid>& replacements() const { return replacements_; }

    /// The bundle identifier, else "pid:" and the process id.
    [[nodiscard]] static std::string cacheKey(const std::optional<std::string>& bundleIdentifier, Pid pid);

private:
    struct Entry {
        Icon icon;
        /// The process that the icon stands for; none when it is the installed application's own.
        std::optional<Pid> process;
    };

    [[nodiscard]] Entry load(const AppWindow& window);
    void forgetIconOf(Pid process);

    IconSource& source_;
    std::unordered_map<std::string, Entry> cache_;
    Subject<Pid> replacements_;
    Subscription terminationObserver_;
    Subscription processIconObserver_;
};

/// Loads the icons of listed windows when the list arrives, one application in each turn of the loop: an icon may come
/// from a disk or, asked for and waited for, from the window itself, and neither may stand between a key press and the
/// panel. Main thread.
class IconPrefetcher {
public:
    /// More applications than the first frame of any layout shows. Not all of a long list: icons are kept for as long
    /// as their applications run, and those of windows that nobody scrolls to are memory for nothing.
    static constexpr std::size_t mostApplications = 32;

    /// All references outlive this.
    IconPrefetcher(MainLoop& mainLoop, const Workspace& workspace, IconProvider& icons,
                   const Published<std::vector<AppWindow>>& windows);
    IconPrefetcher(const IconPrefetcher&) = delete;
    IconPrefetcher& operator=(const IconPrefetcher&) = delete;

private:
    void collect(const std::vector<AppWindow>& windows);
    void collectAgainLater();
    void loadLater();
    void loadNext();

    MainLoop& mainLoop_;
    const Workspace& workspace_;
    IconProvider& icons_;
    const Published<std::vector<AppWindow>>& windows_;
    /// One window of each application whose icon is missing, the least recently used first.
    std::vector<AppWindow> wanted_;
    /// One icon in each turn of the loop.
    CoalescedTask next_;
    Subscription subscription_;
    Subscription replacements_;
    Subscription collection_;
};

}  // namespace ferrowyn

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

/// Application icons. Each is cached until its application quits or changes its icon. Main thread; AppServices owns it.
class IconProvider {
public:
    IconProvider(IconSource& source, Workspace& workspace);

    /// Never fails: a generic application icon is the last resort.
    [[nodiscard]] const Icon& icon(const AppWindow& window);
    /// Whether the icon is in the cache.
    [[nodiscard]] bool holds(const AppWindow& window) const;
    /// Forgets every icon.
    void removeAll();

    /// Sends the id of a process that changed its icon, when the old icon was removed from the cache.
    [[nodiscard]] const Subject<Pid>& replacements() const { return replacements_; }

    /// The bundle identifier, else "pid:" and the process id.
    [[nodiscard]] static std::string cacheKey(const std::optional<std::string>& bundleIdentifier, Pid pid);

private:
    struct Entry {
        Icon icon;
        /// The process that gave the icon; absent when the icon belongs to the installed application.
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

/// Loads the icons of listed windows when the list arrives, so that a key press never waits for a disk or for an
/// application. Loads one application's icon in each turn of the loop. Main thread; AppServices owns it.
class IconPrefetcher {
public:
    /// More applications than the first frame of any layout shows. Not all of a long list, because icons stay in memory
    /// while their applications run.
    static constexpr std::size_t mostApplications = 32;

    /// All references outlive this object.
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
    /// One window of each application whose icon is missing, least recently used first: the last one is loaded next.
    std::vector<AppWindow> wanted_;
    CoalescedTask next_;
    Subscription subscription_;
    Subscription replacements_;
    Subscription collection_;
};

}  // namespace ferrowyn

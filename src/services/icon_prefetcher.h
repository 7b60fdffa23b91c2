#pragma once

#include <cstddef>
#include <memory>
#include <vector>

#include "core/app_window.h"
#include "core/published.h"

namespace ferrowyn {

class IconProvider;
class MainLoop;
class Workspace;

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
    bool isPosted_ = false;
    /// Posted tasks hold it weakly.
    std::shared_ptr<IconPrefetcher*> self_ = std::make_shared<IconPrefetcher*>(this);
    Subscription subscription_;
    Subscription replacements_;
    Subscription collection_;
};

}  // namespace ferrowyn

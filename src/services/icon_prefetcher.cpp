#include "services/icon_prefetcher.h"

#include <algorithm>
#include <string>
#include <unordered_set>
#include <utility>

#include "platform/main_loop.h"
#include "services/icon_provider.h"

namespace ferrowyn {

IconPrefetcher::IconPrefetcher(MainLoop& mainLoop, IconProvider& icons,
                               const Published<std::vector<AppWindow>>& windows)
    : mainLoop_(mainLoop),
      icons_(icons),
      subscription_(windows.subscribe([this](const std::vector<AppWindow>& list) { collect(list); })) {}

void IconPrefetcher::collect(const std::vector<AppWindow>& windows) {
    wanted_.clear();
    std::unordered_set<std::string> seen;
    for (const AppWindow& window : windows) {
        if (seen.size() == mostApplications) {
            break;
        }
        if (seen.insert(IconProvider::cacheKey(window.bundleIdentifier, window.pid)).second && !icons_.holds(window)) {
            wanted_.push_back(window);
        }
    }
    std::reverse(wanted_.begin(), wanted_.end());
    loadLater();
}

void IconPrefetcher::loadLater() {
    if (wanted_.empty() || std::exchange(isPosted_, true)) {
        return;
    }
    mainLoop_.post([weak = std::weak_ptr<IconPrefetcher*>(self_)] {
        if (const auto self = weak.lock()) {
            (*self)->loadNext();
        }
    });
}

void IconPrefetcher::loadNext() {
    isPosted_ = false;
    if (!wanted_.empty()) {
        static_cast<void>(icons_.icon(wanted_.back()));
        wanted_.pop_back();
    }
    loadLater();
}

}  // namespace ferrowyn

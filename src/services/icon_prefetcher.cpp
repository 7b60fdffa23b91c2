#include "services/icon_prefetcher.h"

#include <algorithm>
#include <string>
#include <unordered_set>
#include <utility>

#include "platform/main_loop.h"
#include "platform/workspace.h"
#include "services/icon_provider.h"

namespace ferrowyn {

namespace {

/// An application that replaces its icon all the time (a progress, an unread count) is read no more often than this.
constexpr Seconds replacementInterval{1.0};

}  // namespace

IconPrefetcher::IconPrefetcher(MainLoop& mainLoop, const Workspace& workspace, IconProvider& icons,
                               const Published<std::vector<AppWindow>>& windows)
    : mainLoop_(mainLoop),
      workspace_(workspace),
      icons_(icons),
      windows_(windows),
      subscription_(windows.subscribe([this](const std::vector<AppWindow>& list) { collect(list); })),
      replacements_(icons.replacements().subscribe([this](const Pid&) { collectAgainLater(); })) {}

void IconPrefetcher::collectAgainLater() {
    if (!collection_) {
        collection_ = mainLoop_.after(replacementInterval, [this] {
            collect(windows_.get());
            collection_.reset();
        });
    }
}

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
        const auto window = std::move(wanted_.back());
        wanted_.pop_back();
        // A list may name an application that has quit: what were kept for it now, nothing would ever forget.
        if (workspace_.runningApplication(window.pid)) {
            static_cast<void>(icons_.icon(window));
        }
    }
    loadLater();
}

}  // namespace ferrowyn

#include "services/icon_provider.h"

#include <algorithm>
#include <unordered_set>
#include <utility>

#include "platform/icon_source.h"
#include "platform/main_loop.h"
#include "platform/workspace.h"

namespace ferrowyn {

IconProvider::IconProvider(IconSource& source, Workspace& workspace)
    : source_(source),
      terminationObserver_(workspace.observe([this](const WorkspaceEvent& event) {
          if (event.kind == WorkspaceEvent::Kind::didTerminate && event.application) {
              cache_.erase(cacheKey(event.application->bundleIdentifier, event.application->pid));
          }
      })),
      processIconObserver_(source.observeProcessIcons([this](Pid process) { forgetIconOf(process); })) {}

IconProvider::Entry IconProvider::load(const AppWindow& window) {
    // A desktop may have no icon for the file. Then the window shows the icon that its process gives.
    if (window.bundleURL) {
        if (auto image = source_.iconForFile(*window.bundleURL)) {
            return {.icon = {.image = std::move(image)}, .process = std::nullopt};
        }
    }
    auto image = source_.iconForProcess(window.pid);
    if (image == nullptr) {
        image = source_.genericApplicationIcon(window.appName);
    }
    return {.icon = {.image = std::move(image)}, .process = window.pid};
}

/// Many programs show their window first and set its icon a moment later, so the old icon is dropped.
void IconProvider::forgetIconOf(Pid process) {
    if (std::erase_if(cache_, [process](const auto& cached) { return cached.second.process == process; }) > 0) {
        replacements_.send(process);
    }
}

const Icon& IconProvider::icon(const AppWindow& window) {
    auto key = cacheKey(window.bundleIdentifier, window.pid);
    if (const auto cached = cache_.find(key); cached != cache_.end()) {
        return cached->second.icon;
    }
    return cache_.emplace(std::move(key), load(window)).first->second.icon;
}

bool IconProvider::holds(const AppWindow& window) const {
    return cache_.contains(cacheKey(window.bundleIdentifier, window.pid));
}

void IconProvider::removeAll() {
    cache_.clear();
}

std::string IconProvider::cacheKey(const std::optional<std::string>& bundleIdentifier, Pid pid) {
    return bundleIdentifier ? *bundleIdentifier : "pid:" + std::to_string(pid);
}

namespace {

/// The shortest time between two reads of changed icons. Some applications change theirs all the time (to show a
/// progress or a count).
constexpr Seconds replacementInterval{1.0};

}  // namespace

IconPrefetcher::IconPrefetcher(MainLoop& mainLoop, const Workspace& workspace, IconProvider& icons,
                               const Published<std::vector<AppWindow>>& windows)
    : mainLoop_(mainLoop),
      workspace_(workspace),
      icons_(icons),
      windows_(windows),
      next_(postTo(mainLoop), [this] { loadNext(); }),
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
    if (!wanted_.empty()) {
        next_.request();
    }
}

void IconPrefetcher::loadNext() {
    if (!wanted_.empty()) {
        const auto window = std::move(wanted_.back());
        wanted_.pop_back();
        // The list may name an application that has quit. Its icon would never be removed from the cache.
        if (workspace_.runningApplication(window.pid)) {
            static_cast<void>(icons_.icon(window));
        }
    }
    loadLater();
}

}  // namespace ferrowyn

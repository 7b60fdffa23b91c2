#include "services/icon_provider.h"

#include <utility>

#include "platform/icon_source.h"
#include "platform/workspace.h"

namespace ferrowyn {

namespace {

std::shared_ptr<const IconImage> loadImage(IconSource& source, const AppWindow& window) {
    // Where the system would always have an icon for a file, this desktop's answer may be "none"; a window is then as
    // well served by the icon that its process gives itself.
    if (window.bundleURL) {
        if (auto image = source.iconForFile(*window.bundleURL)) {
            return image;
        }
    }
    if (auto image = source.iconForProcess(window.pid)) {
        return image;
    }
    return source.genericApplicationIcon(window.appName);
}

}  // namespace

IconProvider::IconProvider(IconSource& source, Workspace& workspace)
    : source_(source), terminationObserver_(workspace.observe([this](const WorkspaceEvent& event) {
          if (event.kind == WorkspaceEvent::Kind::didTerminate && event.application) {
              cache_.erase(cacheKey(event.application->bundleIdentifier, event.application->pid));
          }
      })) {}

const Icon& IconProvider::icon(const AppWindow& window) {
    auto key = cacheKey(window.bundleIdentifier, window.pid);
    if (const auto cached = cache_.find(key); cached != cache_.end()) {
        return cached->second;
    }
    return cache_.emplace(std::move(key), Icon{.image = loadImage(source_, window)}).first->second;
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

}  // namespace ferrowyn

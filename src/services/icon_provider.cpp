#include "services/icon_provider.h"

#include <utility>

#include "platform/icon_source.h"
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
    // Where the system would always have an icon for a file, this desktop's answer may be "none"; a window is then as
    // well served by the icon that its process gives itself.
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

/// Many programs show their window first and give it an icon a moment later.
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

}  // namespace ferrowyn

#include "inventory/recency_tracker.h"

#include <algorithm>
#include <compare>
#include <functional>
#include <utility>

#include "core/text.h"

namespace ferrowyn {

RecencyTracker::RecencyTracker(FrontmostPid frontmostPid) : frontmostPid_(std::move(frontmostPid)) {}

void RecencyTracker::touch(WindowId id) {
    ranks_[id] = ++counter_;
    if (ranks_.size() > maximumEntries) {
        prune();
    }
}

void RecencyTracker::seedIfEmpty(const std::vector<AppWindow>& windows) {
    if (!ranks_.empty()) {
        return;
    }
    std::vector<AppWindow> backToFront = windows;
    std::ranges::stable_sort(backToFront, std::ranges::greater{}, &AppWindow::zOrder);
    for (const AppWindow& window : backToFront) {
        if (window.zOrder != unlistedZOrder) {
            touch(window.id);
        }
    }
    // Only the first focused window is considered, also when its application is not in front.
    const auto focused = std::ranges::find(windows, true, &AppWindow::isAppFocusedWindow);
    if (focused != windows.end() && frontmostPid_() == focused->pid) {
        touch(focused->id);
    }
}

void RecencyTracker::retainOnly(const std::unordered_set<WindowId>& ids, std::int64_t newestForgotten) {
    std::erase_if(ranks_,
                  [&](const auto& entry) { return entry.second <= newestForgotten && !ids.contains(entry.first); });
}

bool RecencyTracker::precedes(const AppWindow& a, const AppWindow& b) const {
    const auto rankOfA = rank(a.id);
    const auto rankOfB = rank(b.id);
    if (rankOfA || rankOfB) {
        // An absent rank is less than any rank.
        return rankOfA > rankOfB;
    }
    if (a.zOrder != b.zOrder) {
        return a.zOrder < b.zOrder;
    }
    if (a.appName == b.appName) {
        return a.id < b.id;
    }
    const auto order = text::localizedStandardCompare(a.appName, b.appName);
    // Sorting needs an order also between names that compare as equal ("App 1", "App 01").
    return std::is_neq(order) ? std::is_lt(order) : a.appName < b.appName;
}

std::optional<std::int64_t> RecencyTracker::rank(WindowId id) const {
    const auto entry = ranks_.find(id);
    return entry != ranks_.end() ? std::optional(entry->second) : std::nullopt;
}

void RecencyTracker::prune() {
    std::vector<std::pair<WindowId, std::int64_t>> entries(ranks_.begin(), ranks_.end());
    std::ranges::sort(entries, std::ranges::greater{}, [](const auto& entry) { return entry.second; });
    entries.resize(std::min(entries.size(), maximumEntries / 2));
    ranks_ = {entries.begin(), entries.end()};
}

}  // namespace ferrowyn

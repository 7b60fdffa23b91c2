#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <limits>
#include <optional>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "core/app_window.h"

namespace ferrowyn {

/// Remembers how recently each window was used, and orders windows by it. In memory only. Main thread; WindowIndex owns
/// it.
class RecencyTracker {
public:
    /// Returns the frontmost application; nothing when there is none or the desktop does not report it.
    using FrontmostPid = std::function<std::optional<Pid>()>;

    explicit RecencyTracker(FrontmostPid frontmostPid);

    /// The window was just used.
    void touch(WindowId id);
    /// Takes a first order from the stacking of the windows. Does nothing when any rank is known.
    void seedIfEmpty(const std::vector<AppWindow>& windows);
    /// Forgets every window that is not in the set. Ranks above `newestForgotten` stay, because they were given after
    /// the set was gathered.
    void retainOnly(const std::unordered_set<WindowId>& ids,
                    std::int64_t newestForgotten = std::numeric_limits<std::int64_t>::max());
    /// Whether a comes before b: most recently used first, then by stacking, application name and id. A strict order.
    [[nodiscard]] bool precedes(const AppWindow& a, const AppWindow& b) const;

    /// Larger is more recent; nothing for a window that was never used. Ranks are never reused.
    [[nodiscard]] std::optional<std::int64_t> rank(WindowId id) const;
    /// The rank that was given last; 0 before the first.
    [[nodiscard]] std::int64_t latestRank() const { return counter_; }
    [[nodiscard]] std::size_t count() const { return ranks_.size(); }

    /// When more windows than this are known, all but the most recent half of this number are forgotten.
    static constexpr std::size_t maximumEntries = 2048;

private:
    void prune();

    FrontmostPid frontmostPid_;
    std::unordered_map<WindowId, std::int64_t> ranks_;
    std::int64_t counter_ = 0;
};

}  // namespace ferrowyn

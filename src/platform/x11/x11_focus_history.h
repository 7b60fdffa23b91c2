#pragma once

#include <xcb/xcb.h>

#include <mutex>
#include <optional>
#include <unordered_map>

#include "core/app_window.h"

namespace ferrowyn {

/// Which window of each application was last the active one. The desktop monitor writes it on the main thread, snapshot
/// workers read it; safe on any thread.
class X11FocusHistory {
public:
    void note(Pid pid, xcb_window_t window) {
        const std::scoped_lock lock(mutex_);
        lastActive_[pid] = window;
    }
    void forget(xcb_window_t window) {
        const std::scoped_lock lock(mutex_);
        std::erase_if(lastActive_, [&](const auto& entry) { return entry.second == window; });
    }
    [[nodiscard]] std::optional<xcb_window_t> lastActiveOf(Pid pid) const {
        const std::scoped_lock lock(mutex_);
        const auto found = lastActive_.find(pid);
        return found == lastActive_.end() ? std::nullopt : std::optional(found->second);
    }

private:
    mutable std::mutex mutex_;
    std::unordered_map<Pid, xcb_window_t> lastActive_;
};

}  // namespace ferrowyn

#pragma once

#include <atomic>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <unordered_set>
#include <utility>
#include <vector>

#include "core/app_window.h"
#include "platform/window_inventory.h"

namespace ferrowyn {

/// A window of which a test names only what it is about.
inline AppWindow testWindow(WindowId id, std::int64_t zOrder, Pid pid = 100, std::string appName = "Mail") {
    AppWindow window;
    window.id = id;
    window.pid = pid;
    window.appName = std::move(appName);
    window.zOrder = zOrder;
    return window;
}

/// An inventory that answers with exactly what a test put into it: fields left out, numbers twice, nothing at all. It
/// is shared by the readings, which are read-only, so it may be asked from several threads.
class StubInventory final : public WindowInventory {
public:
    std::optional<std::vector<WindowServerEntry>> list = std::vector<WindowServerEntry>{};
    std::unordered_set<WindowId> onScreen;
    std::vector<RunningApplication> applications;
    /// An application that is not in it does not answer.
    std::map<Pid, AccessibleApplication> answers;
    bool hasLookup = true;

    mutable std::atomic<int> readings = 0;
    mutable std::atomic<int> applicationsAsked = 0;
    mutable std::atomic<double> lastTimeout = 0;
    /// Main thread.
    mutable std::optional<Seconds> lastFocusTimeout;

    [[nodiscard]] std::unique_ptr<InventoryReading> beginReading() const override {
        ++readings;
        return std::make_unique<Reading>(*this);
    }
    [[nodiscard]] std::optional<std::vector<std::optional<WindowId>>> windowOrder() const override { return {}; }
    [[nodiscard]] std::optional<WindowId> focusedWindowNumber(Pid, Seconds messagingTimeout) const override {
        lastFocusTimeout = messagingTimeout;
        return {};
    }

private:
    class Reading final : public InventoryReading {
    public:
        explicit Reading(const StubInventory& stub) : stub_(stub) {}

        [[nodiscard]] std::optional<std::vector<WindowServerEntry>> windowList() const override { return stub_.list; }
        [[nodiscard]] std::unordered_set<WindowId> onScreenWindowIds() const override { return stub_.onScreen; }
        [[nodiscard]] std::vector<RunningApplication> runningApplications() const override {
            return stub_.applications;
        }
        [[nodiscard]] std::optional<AccessibleApplication> windowsOf(Pid pid, Seconds messagingTimeout) const override {
            ++stub_.applicationsAsked;
            stub_.lastTimeout = messagingTimeout.count();
            const auto answer = stub_.answers.find(pid);
            return answer != stub_.answers.end() ? std::optional(answer->second) : std::nullopt;
        }
        [[nodiscard]] bool hasWindowNumberLookup() const override { return stub_.hasLookup; }

    private:
        const StubInventory& stub_;
    };
};

}  // namespace ferrowyn

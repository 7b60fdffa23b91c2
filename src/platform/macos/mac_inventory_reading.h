#pragma once

#include <functional>
#include <optional>
#include <unordered_set>
#include <vector>

#include "platform/macos/mac_window_number_lookup.h"
#include "platform/window_inventory.h"

namespace ferrowyn {

/// Asks the window server and the applications at the moment the snapshot asks it. Any thread but the main one.
class MacInventoryReading final : public InventoryReading {
public:
    using RunningApplications = std::function<std::vector<RunningApplication>()>;

    /// `runningApplications` is called on worker threads. The lookup outlives this.
    MacInventoryReading(RunningApplications runningApplications, const MacWindowNumberLookup& windowNumbers)
        : runningApplications_(std::move(runningApplications)), windowNumbers_(windowNumbers) {}

    [[nodiscard]] std::optional<std::vector<WindowServerEntry>> windowList() const override;
    [[nodiscard]] std::unordered_set<WindowId> onScreenWindowIds() const override;
    [[nodiscard]] std::vector<RunningApplication> runningApplications() const override {
        return runningApplications_();
    }
    [[nodiscard]] std::optional<AccessibleApplication> windowsOf(Pid pid, Seconds messagingTimeout) const override;
    [[nodiscard]] bool hasWindowNumberLookup() const override { return windowNumbers_.isAvailable(); }

private:
    [[nodiscard]] std::optional<AccessibleWindow> read(AXUIElementRef window, Seconds messagingTimeout) const;

    RunningApplications runningApplications_;
    const MacWindowNumberLookup& windowNumbers_;
};

}  // namespace ferrowyn

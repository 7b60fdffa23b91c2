#pragma once

#include <CoreGraphics/CoreGraphics.h>

#include <functional>
#include <optional>
#include <unordered_set>
#include <vector>

#include "core/app_window.h"
#include "platform/macos/mac_element.h"
#include "platform/window_inventory.h"

/// The window server's list. Each call asks the server. Any thread.
namespace ferrowyn::window_list {

/// All windows of all Spaces without desktop elements, front-most first; nothing when the server does not answer. An
/// entry that is none of what is expected keeps its place and says nothing.
[[nodiscard]] std::optional<std::vector<WindowServerEntry>> read();
/// The numbers alone of the same list.
[[nodiscard]] std::optional<std::vector<std::optional<WindowId>>> readOrder();
/// The windows of the active Space; empty when the server does not answer.
[[nodiscard]] std::unordered_set<WindowId> readOnScreenIds();

}  // namespace ferrowyn::window_list

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

/// Which windows exist, from the window server and every application's Accessibility interface.
class MacWindowInventory final : public WindowInventory {
public:
    /// `runningApplications` is called on worker threads. The lookup outlives this and every reading.
    MacWindowInventory(MacInventoryReading::RunningApplications runningApplications,
                       const MacWindowNumberLookup& windowNumbers)
        : runningApplications_(std::move(runningApplications)), windowNumbers_(windowNumbers) {}

    [[nodiscard]] std::unique_ptr<InventoryReading> beginReading() const override;
    [[nodiscard]] std::optional<std::vector<std::optional<WindowId>>> windowOrder() const override;
    [[nodiscard]] std::optional<WindowId> focusedWindowNumber(Pid pid, Seconds messagingTimeout) const override;

private:
    MacInventoryReading::RunningApplications runningApplications_;
    const MacWindowNumberLookup& windowNumbers_;
};

}  // namespace ferrowyn

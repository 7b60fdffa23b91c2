#pragma once

#include "platform/macos/mac_inventory_reading.h"
#include "platform/macos/mac_window_number_lookup.h"
#include "platform/window_inventory.h"

namespace ferrowyn {

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

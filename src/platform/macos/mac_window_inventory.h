#pragma once

#include <functional>
#include <optional>
#include <vector>

#include "core/app_window.h"
#include "platform/macos/mac_element.h"
#include "platform/window_inventory.h"

namespace ferrowyn {

/// Which windows exist, from the window server and every application's Accessibility interface.
class MacWindowInventory final : public WindowInventory {
public:
    using RunningApplications = std::function<std::vector<RunningApplication>()>;

    /// `runningApplications` is called on worker threads. The lookup outlives this and every reading.
    MacWindowInventory(RunningApplications runningApplications, const MacWindowNumberLookup& windowNumbers)
        : runningApplications_(std::move(runningApplications)), windowNumbers_(windowNumbers) {}

    [[nodiscard]] std::unique_ptr<InventoryReading> beginReading() const override;
    [[nodiscard]] std::optional<std::vector<std::optional<WindowId>>> windowOrder() const override;
    [[nodiscard]] std::optional<WindowId> focusedWindowNumber(Pid pid, Seconds messagingTimeout) const override;

private:
    RunningApplications runningApplications_;
    const MacWindowNumberLookup& windowNumbers_;
};

}  // namespace ferrowyn

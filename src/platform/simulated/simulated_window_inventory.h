#pragma once

#include "platform/simulated/simulated_window_model.h"
#include "platform/window_inventory.h"

namespace ferrowyn {

/// Reads the model. A reading keeps a copy of the model, so it is consistent and safe on any thread.
class SimulatedWindowInventory final : public WindowInventory {
public:
    explicit SimulatedWindowInventory(const SimulatedWindowModel& model) : model_(model) {}

    [[nodiscard]] std::unique_ptr<InventoryReading> beginReading() const override;
    [[nodiscard]] std::optional<std::vector<std::optional<WindowId>>> windowOrder() const override;
    [[nodiscard]] std::optional<WindowId> focusedWindowNumber(Pid pid, Seconds messagingTimeout) const override;

private:
    const SimulatedWindowModel& model_;
};

}  // namespace ferrowyn

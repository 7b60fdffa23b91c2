#include "platform/x11/x11_window_inventory.h"

#include "platform/x11/x11_inventory_reading.h"

namespace ferrowyn {

std::unique_ptr<InventoryReading> X11WindowInventory::beginReading() const {
    return std::make_unique<X11InventoryReading>(reader_.read(), scale_.load(), directory_, history_);
}

std::optional<std::vector<std::optional<WindowId>>> X11WindowInventory::windowOrder() const {
    const auto order = model_.order();
    return std::vector<std::optional<WindowId>>(order.begin(), order.end());
}

std::optional<WindowId> X11WindowInventory::focusedWindowNumber(Pid pid, Seconds /*messagingTimeout*/) const {
    return model_.lastActiveOf(pid);
}

}  // namespace ferrowyn

#include "platform/macos/mac_window_inventory.h"

#include "platform/macos/cf_cast.h"
#include "platform/macos/mac_attributes.h"
#include "platform/macos/mac_window_list.h"

namespace ferrowyn {

std::unique_ptr<InventoryReading> MacWindowInventory::beginReading() const {
    return std::make_unique<MacInventoryReading>(runningApplications_, windowNumbers_);
}

std::optional<std::vector<std::optional<WindowId>>> MacWindowInventory::windowOrder() const {
    return window_list::readOrder();
}

std::optional<WindowId> MacWindowInventory::focusedWindowNumber(Pid pid, Seconds messagingTimeout) const {
    const auto application = accessibility::applicationElement(pid);
    accessibility::setMessagingTimeout(application.get(), messagingTimeout);
    const auto answer = accessibility::copyAttribute(application.get(), kAXFocusedWindowAttribute);
    const auto window = castTo<AXUIElementRef>(answer.value.get());
    if (window == nullptr) {
        return std::nullopt;
    }
    // A handle of its own, and the lookup may ask the application once more.
    accessibility::setMessagingTimeout(window, messagingTimeout);
    return windowNumbers_.numberOf(window);
}

}  // namespace ferrowyn

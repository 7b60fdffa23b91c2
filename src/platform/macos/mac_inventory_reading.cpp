#include "platform/macos/mac_inventory_reading.h"

#include "platform/macos/cf_cast.h"
#include "platform/macos/cf_values.h"
#include "platform/macos/mac_attributes.h"
#include "platform/macos/mac_element.h"
#include "platform/macos/mac_window_list.h"

namespace ferrowyn {

namespace {

/// The one attribute among them that the system has no name for.
CFStringRef fullScreenAttribute() {
    return CFSTR("AXFullScreen");
}

}  // namespace

std::optional<std::vector<WindowServerEntry>> MacInventoryReading::windowList() const {
    return window_list::read();
}

std::unordered_set<WindowId> MacInventoryReading::onScreenWindowIds() const {
    return window_list::readOnScreenIds();
}

std::optional<AccessibleApplication> MacInventoryReading::windowsOf(Pid pid, Seconds messagingTimeout) const {
    const auto application = accessibility::applicationElement(pid);
    accessibility::setMessagingTimeout(application.get(), messagingTimeout);
    const auto answer = accessibility::copyAttribute(application.get(), kAXWindowsAttribute);
    const auto windows = castTo<CFArrayRef>(answer.value.get());
    if (windows == nullptr) {
        return std::nullopt;
    }
    AccessibleApplication result;
    if (CFArrayGetCount(windows) == 0) {
        return result;
    }
    const auto focused = accessibility::copyAttribute(application.get(), kAXFocusedWindowAttribute);
    if (focused.error == kAXErrorCannotComplete) {
        return std::nullopt;
    }
    if (const auto element = castTo<AXUIElementRef>(focused.value.get())) {
        result.focusedWindow = MacElement::make(element);
    }
    for (const CFTypeRef each : cf::valuesOf(windows)) {
        const auto element = castTo<AXUIElementRef>(each);
        if (element == nullptr) {
            continue;
        }
        auto window = read(element, messagingTimeout);
        if (!window) {
            return std::nullopt;
        }
        result.windows.push_back(std::move(*window));
    }
    return result;
}

/// Nothing when the application has stopped answering: every further window would cost another timeout.
std::optional<AccessibleWindow> MacInventoryReading::read(AXUIElementRef window, Seconds messagingTimeout) const {
    // Set for each window too, because a timeout goes with the handle it was set on.
    accessibility::setMessagingTimeout(window, messagingTimeout);
    const auto answers =
        accessibility::copyAttributes(window, {kAXSubroleAttribute, kAXTitleAttribute, kAXMinimizedAttribute,
                                               kAXPositionAttribute, kAXSizeAttribute, fullScreenAttribute()});
    if (answers.error == kAXErrorCannotComplete) {
        return std::nullopt;
    }
    const auto [error, number] = windowNumbers_.lookUp(window);
    if (error == kAXErrorCannotComplete) {
        return std::nullopt;
    }
    AccessibleWindow result{.element = MacElement::make(window), .windowNumber = number};
    if (!answers.values.empty()) {
        const auto& values = answers.values;
        result.subrole = cf::string(values[0].get());
        result.title = cf::string(values[1].get());
        result.isMinimized = cf::boolean(values[2].get());
        result.position = cf::point(values[3].get());
        result.size = cf::size(values[4].get());
        result.isFullScreen = cf::boolean(values[5].get());
    }
    return result;
}

}  // namespace ferrowyn

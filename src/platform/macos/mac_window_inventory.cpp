#include "platform/macos/mac_window_inventory.h"

#include <CoreGraphics/CoreGraphics.h>

#include <unordered_set>

#include "platform/macos/cf_values.h"

namespace ferrowyn {

namespace {

constexpr CGWindowListOption everyWindow = kCGWindowListExcludeDesktopElements;
constexpr CGWindowListOption onScreenWindows = kCGWindowListOptionOnScreenOnly | kCGWindowListExcludeDesktopElements;

/// Null when the server answers with nothing, or with something else than a list.
Owned<CFArrayRef> copy(CGWindowListOption option) {
    Owned<CFArrayRef> list(CGWindowListCopyWindowInfo(option, kCGNullWindowID));
    if (castTo<CFArrayRef>(list.get()) == nullptr) {
        list.reset();
    }
    return list;
}

CFTypeRef valueOf(CFTypeRef entry, CFStringRef key) {
    const auto dictionary = castTo<CFDictionaryRef>(entry);
    return dictionary != nullptr ? CFDictionaryGetValue(dictionary, key) : nullptr;
}

std::optional<WindowId> numberOf(CFTypeRef entry) {
    return cf::windowId(valueOf(entry, kCGWindowNumber));
}

/// The system has no constant for this attribute.
CFStringRef fullScreenAttribute() {
    return CFSTR("AXFullScreen");
}

/// Asks the window server and the applications anew at each call. Any thread but the main one: an application may take
/// long to answer.
class MacInventoryReading final : public InventoryReading {
public:
    /// `runningApplications` is called on worker threads. The lookup outlives this.
    MacInventoryReading(MacWindowInventory::RunningApplications runningApplications,
                        const MacWindowNumberLookup& windowNumbers)
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

    MacWindowInventory::RunningApplications runningApplications_;
    const MacWindowNumberLookup& windowNumbers_;
};

std::optional<std::vector<WindowServerEntry>> MacInventoryReading::windowList() const {
    const auto list = copy(everyWindow);
    if (!list) {
        return std::nullopt;
    }
    std::vector<WindowServerEntry> entries;
    for (const CFTypeRef entry : cf::valuesOf(list.get())) {
        entries.push_back({.id = numberOf(entry),
                           .ownerName = cf::string(valueOf(entry, kCGWindowOwnerName)),
                           .isOnScreen = cf::boolean(valueOf(entry, kCGWindowIsOnscreen)),
                           .bounds = cf::rect(valueOf(entry, kCGWindowBounds)),
                           .alpha = cf::real(valueOf(entry, kCGWindowAlpha)),
                           .layer = cf::int64(valueOf(entry, kCGWindowLayer)),
                           .ownerPid = cf::int32(valueOf(entry, kCGWindowOwnerPID))});
    }
    return entries;
}

std::unordered_set<WindowId> MacInventoryReading::onScreenWindowIds() const {
    std::unordered_set<WindowId> numbers;
    if (const auto list = copy(onScreenWindows)) {
        for (const CFTypeRef entry : cf::valuesOf(list.get())) {
            if (const auto number = numberOf(entry)) {
                numbers.insert(*number);
            }
        }
    }
    return numbers;
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

/// Absent when the application has stopped answering: every further window would cost another timeout.
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

}  // namespace

std::unique_ptr<InventoryReading> MacWindowInventory::beginReading() const {
    return std::make_unique<MacInventoryReading>(runningApplications_, windowNumbers_);
}

std::optional<std::vector<std::optional<WindowId>>> MacWindowInventory::windowOrder() const {
    const auto list = copy(everyWindow);
    if (!list) {
        return std::nullopt;
    }
    std::vector<std::optional<WindowId>> numbers;
    for (const CFTypeRef entry : cf::valuesOf(list.get())) {
        numbers.push_back(numberOf(entry));
    }
    return numbers;
}

std::optional<WindowId> MacWindowInventory::focusedWindowNumber(Pid pid, Seconds messagingTimeout) const {
    const auto application = accessibility::applicationElement(pid);
    accessibility::setMessagingTimeout(application.get(), messagingTimeout);
    const auto answer = accessibility::copyAttribute(application.get(), kAXFocusedWindowAttribute);
    const auto window = castTo<AXUIElementRef>(answer.value.get());
    if (window == nullptr) {
        return std::nullopt;
    }
    // A new handle, which needs the timeout too: the lookup may ask the application once more.
    accessibility::setMessagingTimeout(window, messagingTimeout);
    return windowNumbers_.numberOf(window);
}

}  // namespace ferrowyn

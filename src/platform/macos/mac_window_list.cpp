#include "platform/macos/mac_window_list.h"

#include "platform/macos/cf_cast.h"
#include "platform/macos/cf_values.h"
#include "platform/macos/owned.h"

namespace ferrowyn::window_list {

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

}  // namespace

std::optional<std::vector<WindowServerEntry>> read() {
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

std::optional<std::vector<std::optional<WindowId>>> readOrder() {
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

std::unordered_set<WindowId> readOnScreenIds() {
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

}  // namespace ferrowyn::window_list

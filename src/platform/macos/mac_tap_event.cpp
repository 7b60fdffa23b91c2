#include "platform/macos/mac_tap_event.h"

#include <algorithm>
#include <vector>

#include "platform/macos/owned.h"

namespace ferrowyn {

namespace {

template <typename Ours, typename Systems>
constexpr bool isSame(Ours ours, Systems systems) {
    return static_cast<std::uint64_t>(ours) == static_cast<std::uint64_t>(systems);
}

// The logic speaks the system's own numbers.
static_assert(isSame(TapEvent::Type::keyDown, kCGEventKeyDown));
static_assert(isSame(TapEvent::Type::keyUp, kCGEventKeyUp));
static_assert(isSame(TapEvent::Type::flagsChanged, kCGEventFlagsChanged));
static_assert(isSame(TapEvent::Type::disabledByTimeout, kCGEventTapDisabledByTimeout));
static_assert(isSame(TapEvent::Type::disabledByUserInput, kCGEventTapDisabledByUserInput));
static_assert(isSame(event_flags::shift, kCGEventFlagMaskShift));
static_assert(isSame(event_flags::control, kCGEventFlagMaskControl));
static_assert(isSame(event_flags::option, kCGEventFlagMaskAlternate));
static_assert(isSame(event_flags::command, kCGEventFlagMaskCommand));

std::u16string textOf(CGEventRef event) {
    UniCharCount length = 0;
    CGEventKeyboardGetUnicodeString(event, 0, &length, nullptr);
    std::vector<UniChar> units(length);
    if (length > 0) {
        CGEventKeyboardGetUnicodeString(event, length, &length, units.data());
        units.resize(std::min<std::size_t>(units.size(), length));
    }
    return {units.begin(), units.end()};
}

}  // namespace

void MacTapEvent::prepareTexts() {
    constexpr CGKeyCode someKey = 0;
    if (const Owned<CGEventRef> event(CGEventCreateKeyboardEvent(nullptr, someKey, true)); event) {
        static_cast<void>(textOf(event.get()));
    }
}

TapEvent::Type MacTapEvent::type() const {
    return static_cast<Type>(type_);
}

std::uint64_t MacTapEvent::flags() const {
    return event_ != nullptr ? CGEventGetFlags(event_) : 0;
}

std::uint16_t MacTapEvent::keyCode() const {
    return event_ != nullptr ? static_cast<std::uint16_t>(CGEventGetIntegerValueField(event_, kCGKeyboardEventKeycode))
                             : 0;
}

std::u16string MacTapEvent::text(std::optional<std::uint64_t> withFlags) const {
    if (event_ == nullptr) {
        return {};
    }
    if (!withFlags) {
        return textOf(event_);
    }
    const Owned<CGEventRef> copy(CGEventCreateCopy(event_));
    if (!copy) {
        return textOf(event_);
    }
    CGEventSetFlags(copy.get(), static_cast<CGEventFlags>(*withFlags));
    return textOf(copy.get());
}

}  // namespace ferrowyn

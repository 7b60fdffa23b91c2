#pragma once

#include <CoreGraphics/CoreGraphics.h>

#include <functional>
#include <utility>

#include "platform/keyboard_tap.h"

namespace ferrowyn {

/// An event of the system's tap, borrowed for the length of the callback. Tap thread.
class MacTapEvent final : public TapEvent {
public:
    /// The two "disabled" types come without an event worth asking, or with none.
    MacTapEvent(CGEventType type, CGEventRef event) : type_(type), event_(event) {}

    /// Asks for the text of some key. What translates keys is made when it is first used, which must be on the main
    /// thread; after that any thread may use it.
    static void prepareTexts();

    [[nodiscard]] Type type() const override;
    [[nodiscard]] std::uint64_t flags() const override;
    [[nodiscard]] std::uint16_t keyCode() const override;
    [[nodiscard]] std::u16string text(std::optional<std::uint64_t> withFlags) const override;

private:
    CGEventType type_;
    CGEventRef event_;
};

/// Taps of the session's keyboard, ahead of all others, each served by the run loop of a thread. A tap filters every
/// event, so it needs to know neither the trigger nor the session.
class MacKeyboardTaps final : public KeyboardTaps {
public:
    /// Does the work in an autorelease pool of its own.
    using InPool = std::function<void(const std::function<void()>& work)>;

    /// The tap's thread has no pool of its own, and the system's functions autorelease too.
    explicit MacKeyboardTaps(InPool inPool) : inPool_(std::move(inPool)) {}

    [[nodiscard]] Start start(SwitcherModifier trigger, TapCallback callback) override;

private:
    InPool inPool_;
};

}  // namespace ferrowyn

#pragma once

#include <CoreGraphics/CoreGraphics.h>

#include <functional>
#include <utility>

#include "platform/event_tap.h"

namespace ferrowyn {

class Log;

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

/// The system's own event taps, and the thread that serves one.
class MacEventTaps final : public EventTaps {
public:
    /// Does the work in an autorelease pool of its own.
    using InPool = std::function<void(const std::function<void()>& work)>;

    /// The log outlives this. The tap's thread has no pool of its own, and the system's functions autorelease too.
    MacEventTaps(Log& log, InPool inPool) : log_(log), inPool_(std::move(inPool)) {}

    [[nodiscard]] std::shared_ptr<EventTap> create(std::uint64_t mask, SwitcherModifier trigger,
                                                   Callback callback) override;
    [[nodiscard]] std::shared_ptr<TapRunLoopSource> createSource(const std::shared_ptr<EventTap>& tap) override;
    [[nodiscard]] std::shared_ptr<TapRunLoop> currentRunLoop() override;
    [[nodiscard]] std::unique_ptr<TapThread> startThread(std::string_view name, std::function<void()> body) override;

private:
    Log& log_;
    InPool inPool_;
};

}  // namespace ferrowyn

#pragma once

#include "platform/event_tap.h"

namespace ferrowyn {

class Log;

/// The system's own event taps, and the thread that serves one.
class MacEventTaps final : public EventTaps {
public:
    /// The log outlives this.
    explicit MacEventTaps(Log& log) : log_(log) {}

    [[nodiscard]] std::shared_ptr<EventTap> create(std::uint64_t mask, SwitcherModifier trigger,
                                                   Callback callback) override;
    [[nodiscard]] std::shared_ptr<TapRunLoopSource> createSource(const std::shared_ptr<EventTap>& tap) override;
    [[nodiscard]] std::shared_ptr<TapRunLoop> currentRunLoop() override;
    [[nodiscard]] std::unique_ptr<TapThread> startThread(std::string_view name, std::function<void()> body) override;

private:
    Log& log_;
};

}  // namespace ferrowyn

#pragma once

#include <memory>
#include <mutex>
#include <string>

#include "platform/event_tap.h"
#include "platform/x11/x11_input_context.h"

namespace ferrowyn {

class Log;
class X11EventTap;

/// Keyboard taps on X11. It assigns `requestKeyboardProbe` of the context, which outlives it, as the log does.
class X11EventTaps final : public EventTaps {
public:
    /// `display` as in DISPLAY; empty for the environment's.
    X11EventTaps(X11InputContext& context, Log& log, std::string display = {});
    ~X11EventTaps() override;

    [[nodiscard]] std::shared_ptr<EventTap> create(std::uint64_t mask, SwitcherModifier trigger,
                                                   Callback callback) override;
    [[nodiscard]] std::shared_ptr<TapRunLoopSource> createSource(const std::shared_ptr<EventTap>& tap) override;
    [[nodiscard]] std::shared_ptr<TapRunLoop> currentRunLoop() override;
    [[nodiscard]] std::unique_ptr<TapThread> startThread(std::string_view name, std::function<void()> body) override;

    /// The session was locked, or something else took the keyboard away: the tap gives it back and reports that the
    /// user disabled it. From any thread.
    void notifyKeyboardUnavailable();

private:
    [[nodiscard]] std::shared_ptr<X11EventTap> currentTap() const;

    X11InputContext& context_;
    Log& log_;
    std::string display_;
    mutable std::mutex lock_;
    std::weak_ptr<X11EventTap> currentTap_;
};

}  // namespace ferrowyn

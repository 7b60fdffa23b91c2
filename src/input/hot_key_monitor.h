#pragma once

#include <array>
#include <functional>
#include <memory>
#include <optional>
#include <string_view>

#include "core/posted_work.h"
#include "core/published.h"
#include "core/switcher_command.h"
#include "core/switcher_options.h"
#include "input/tap_state.h"
#include "platform/keyboard_tap.h"
#include "platform/main_loop.h"

namespace ferrowyn {

struct Platform;
class Log;
class Trust;

/// The only source of the panel's keys: classifies the tap's events and watches over the tap. Main thread, except for
/// the tap callback, which runs on the tap's thread and touches nothing but `TapState`.
class HotKeyMonitor {
public:
    enum class Failure { trustRevoked, repeatedTimeouts };

    HotKeyMonitor(const Platform& platform, SwitcherModifier modifier);
    ~HotKeyMonitor();
    HotKeyMonitor(const HotKeyMonitor&) = delete;
    HotKeyMonitor& operator=(const HotKeyMonitor&) = delete;

    /// Assigned by the owner before `start`; called on the main thread.
    std::function<void(const SwitcherCommand&)> onCommand;
    /// The system disabled the tap.
    std::function<void()> onTapDisabled;
    /// The monitor gave the tap up; it has stopped by then.
    std::function<void(Failure)> onTapFailed;

    /// True when the monitor runs, or did already.
    bool start();
    void stop();
    [[nodiscard]] const Published<bool>& isRunning() const { return isRunning_; }
    [[nodiscard]] TapState& state() { return *state_; }

private:
    static constexpr int maximumRetries = 4;

    [[nodiscard]] TapCallback makeTapCallback();
    void startHealthTimer();
    void checkHealth();
    void reenable(std::string_view reason);
    void deliver(const SwitcherCommand& command, std::optional<TapSession> request);
    void handleTapDisabled(bool byTimeout);
    void handleTimeout();
    void stopAndFail(Failure failure);
    void removeTap();

    MainLoop& mainLoop_;
    Log& log_;
    Trust& trust_;
    KeyboardTaps& keyboardTaps_;

    Published<bool> isRunning_{false};
    /// Shared with the tap thread's callback, which may still be running while the monitor goes.
    std::shared_ptr<TapState> state_ = std::make_shared<TapState>();
    std::unique_ptr<KeyboardTap> tap_;
    Subscription healthTimer_;
    int consecutiveDisables_ = 0;
    /// Absent when the tap has not timed out since it was started.
    std::optional<TimePoint> lastDisableTime_;
    /// The pending re-enabling after each timeout of a row.
    std::array<Subscription, maximumRetries> retries_;
    /// Lives from `start` to `stop`: the tap's posted work does nothing afterwards, even when the monitor was started
    /// again.
    std::optional<LifeToken> period_;
};

}  // namespace ferrowyn

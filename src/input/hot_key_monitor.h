#pragma once

#include <functional>
#include <memory>

#include "core/published.h"
#include "core/switcher_command.h"
#include "core/switcher_modifier.h"
#include "input/tap_state.h"

namespace ferrowyn {

struct Platform;

/// The program's only source of keyboard input. Main thread, except for the tap callback, which runs on the tap thread
/// and touches nothing but `TapState`.
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
    Published<bool> isRunning_{false};
    /// Shared with the tap thread's callback, which may still be running while the monitor goes.
    std::shared_ptr<TapState> state_ = std::make_shared<TapState>();
};

}  // namespace ferrowyn

#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "core/posted_work.h"
#include "core/published.h"

namespace ferrowyn {

class BusThread;
class MainLoop;

/// Says whether the session is locked, from what the login manager and the screen saver report over D-Bus. A machine
/// that goes to sleep counts as locked until it is awake; without a bus the session is never locked. Main thread; the
/// buses are used on a second thread, because connecting to one blocks.
class SessionLock {
public:
    /// D-Bus addresses; nullopt where there is no such bus.
    struct Buses {
        std::optional<std::string> system;
        std::optional<std::string> session;
        /// Returns only addresses that the environment names or whose socket exists: Qt would start a new session bus
        /// when it looks for one itself.
        [[nodiscard]] static Buses fromEnvironment();
    };

    /// Starts listening at once. `onLocking` is called on the bus thread for each report that the session is being
    /// locked or put to sleep, also for repeated ones: the keyboard has to be released at once, however busy the main
    /// thread is.
    explicit SessionLock(
        MainLoop& mainLoop, const Buses& buses = Buses::fromEnvironment(), std::function<void()> onLocking = [] {});
    ~SessionLock();
    SessionLock(const SessionLock&) = delete;
    SessionLock& operator=(const SessionLock&) = delete;

    [[nodiscard]] bool isLocked() const { return isLocked_; }
    /// `onChange` is called at each change, with the new state.
    [[nodiscard]] Subscription observe(std::function<void(bool isLocked)> onChange) const;

private:
    void setLocked(bool isLocked);

    bool isLocked_ = false;
    Subject<bool> changes_;
    /// What the bus thread posts may arrive after this object is destroyed.
    LifeToken life_;
    std::unique_ptr<BusThread> thread_;
};

}  // namespace ferrowyn

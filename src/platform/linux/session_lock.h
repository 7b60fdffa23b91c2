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

/// Whether the session is locked, as the login manager and the screen saver say over D-Bus. A machine that goes to
/// sleep counts as locked until it is awake; without a bus the session counts as never locked. Main thread. A second
/// thread speaks to the buses, because even connecting to one waits for it.
class SessionLock {
public:
    /// D-Bus addresses; nothing where there is no such bus.
    struct Buses {
        std::optional<std::string> system;
        std::optional<std::string> session;
        /// Only addresses that exist: looking further would start a bus of our own.
        [[nodiscard]] static Buses fromEnvironment();
    };

    /// Starts listening at once. `onLocking` hears each word that the session is being locked, or put to sleep, on the
    /// thread that hears it from the bus: whoever holds the keyboard gives it back there and then, however busy the
    /// main thread is.
    explicit SessionLock(
        MainLoop& mainLoop, const Buses& buses = Buses::fromEnvironment(), std::function<void()> onLocking = [] {});
    ~SessionLock();
    SessionLock(const SessionLock&) = delete;
    SessionLock& operator=(const SessionLock&) = delete;

    [[nodiscard]] bool isLocked() const { return isLocked_; }
    /// Told of each change, with the new state.
    [[nodiscard]] Subscription observe(std::function<void(bool isLocked)> handler) const;

private:
    void setLocked(bool isLocked);

    bool isLocked_ = false;
    Subject<bool> changes_;
    /// Dies with this object, for those that must notice on the main thread.
    LifeToken life_;
    std::unique_ptr<BusThread> thread_;
};

}  // namespace ferrowyn

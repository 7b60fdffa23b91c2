#pragma once

#include <cstdint>
#include <memory>
#include <mutex>

#include "core/switcher_options.h"

namespace ferrowyn {

class EventTap;

/// The only data shared between the tap thread and the main thread. Every read and write holds the lock, for no longer
/// than it takes to copy or set a few fields. What the tap itself must know (the trigger, whether a session is open) is
/// passed on to it by the main thread after the lock is released, so that no call is ever made while holding it.
class TapState {
public:
    /// What one classification needs, copied in one locked section.
    struct Snapshot {
        std::uint64_t modifierFlag = event_flags::command;
        bool isSwitcherVisible = false;
        bool isHoldModeActive = false;
        friend bool operator==(const Snapshot&, const Snapshot&) = default;
    };

    [[nodiscard]] Snapshot snapshot() const;

    /// Main thread; the tap is told which trigger it serves from now on.
    void setModifier(SwitcherModifier modifier);
    void setSwitcherVisible(bool isVisible);
    void setHoldModeActive(bool isActive);
    /// Tells the tap whether a session is open, as `isSwitcherVisible` says at this moment. A step of its own, because
    /// a tap that held events back for the session classifies them as soon as it is told, and by then both flags must
    /// be set: with hold mode still missing, a modifier released early would leave the panel open. Main thread.
    void passSessionOn() const;

    void setKeepRunning(bool keepRunning);
    [[nodiscard]] bool keepRunning() const;
    void setReenableRequested(bool isRequested);
    [[nodiscard]] bool reenableRequested() const;
    /// Main thread.
    void setTapPort(std::shared_ptr<EventTap> tap);

    /// The system disabled the tap: no session is open for the tap thread any more. Tap thread; the main thread passes
    /// that on to the tap when it handles the disabled tap.
    void noteTapDisabled();
    /// No session is open any more, and the tap thread is to end.
    void noteStop();

private:
    mutable std::mutex lock_;
    std::uint64_t modifierFlag_ = event_flags::command;
    bool isSwitcherVisible_ = false;
    bool isHoldModeActive_ = false;
    bool keepRunning_ = false;
    bool reenableRequested_ = false;
    std::shared_ptr<EventTap> tapPort_;
};

}  // namespace ferrowyn

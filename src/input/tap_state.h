#pragma once

#include <cstdint>
#include <memory>
#include <mutex>

#include "core/switcher_modifier.h"

namespace ferrowyn {

class EventTap;

/// The only data shared between the tap thread and the main thread. Every read and write holds the lock, for no longer
/// than it takes to copy or set a few fields. After the lock is released, what the tap itself must know (the trigger,
/// whether a session is open) is passed on to it.
class TapState {
public:
    /// What one classification needs, copied in one locked section.
    struct Snapshot {
        std::uint64_t modifierFlag = event_flags::command;
        bool isSwitcherVisible = false;
        bool isHoldModeActive = false;
    };

    [[nodiscard]] Snapshot snapshot() const;

    void setModifier(SwitcherModifier modifier);
    void setSwitcherVisible(bool isVisible);
    void setHoldModeActive(bool isActive);
    void setKeepRunning(bool keepRunning);
    [[nodiscard]] bool keepRunning() const;
    void setReenableRequested(bool isRequested);
    [[nodiscard]] bool reenableRequested() const;
    void setTapPort(std::shared_ptr<EventTap> tap);
    /// Both flags at once, as a stop or a disabled tap needs it.
    void forgetSession();

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

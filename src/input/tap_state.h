#pragma once

#include <cstdint>
#include <mutex>
#include <optional>

#include "core/switcher_options.h"

namespace ferrowyn {

class KeyboardTap;
enum class TapSession : std::uint64_t;

/// The only data of the logic that the tap thread and the main thread share. Every read and write holds the lock, for
/// no longer than it takes to copy or set a few fields. What the tap itself must know (the trigger, which session is
/// open) is told by the main thread after the lock is released, so that no call is ever made while holding it.
class TapState {
public:
    /// What one classification needs, copied in one locked section.
    struct Snapshot {
        std::uint64_t modifierFlag = event_flags::command;
        bool isSwitcherVisible = false;
        /// Releasing the modifier ends the session and switches.
        bool isHoldModeActive = false;
        friend bool operator==(const Snapshot&, const Snapshot&) = default;
    };

    [[nodiscard]] Snapshot snapshot() const;

    /// Main thread; the tap is told which trigger it serves from now on.
    void setModifier(SwitcherModifier modifier);
    /// The switcher is visible. The session is the one that the request at hand asks for, if there is such a request;
    /// when one is open already, that one goes on. The tap is told once both flags are set, because it may classify
    /// what it has held back at once. Main thread.
    void openSession(bool isHoldModeActive);
    /// The switcher is not visible any more; the tap is told. Without effect when no session is open. Main thread.
    void closeSession();
    /// Tells the tap of the open session once more; does nothing when none is open. Main thread.
    void tellTapOfSession() const;
    void setHoldModeActive(bool isActive);

    /// Numbers a session that an event asks for. Tap thread.
    [[nodiscard]] TapSession requestSession();
    /// The main thread handles this request from now on: a session that opens is the one it asks for. False when the
    /// tap has given the request up; it has been answered then. Main thread.
    [[nodiscard]] bool beginRequest(TapSession request);
    /// Ends the request. If no session was opened for it, the tap is told so; otherwise it would go on holding keys
    /// back. Main thread.
    void endRequest();

    void setReenableRequested(bool isRequested);
    [[nodiscard]] bool reenableRequested() const;
    /// The tap that is told, or null. Its owner takes it away here before it destroys it. Main thread.
    void setTapPort(KeyboardTap* tap);

    /// The system disabled the tap: the switcher counts as hidden for the tap thread. Tap thread; the main thread
    /// closes the session when it handles the disabled tap.
    void noteTapDisabled();

private:
    [[nodiscard]] TapSession nextSession();

    mutable std::mutex lock_;
    std::uint64_t modifierFlag_ = event_flags::command;
    bool isSwitcherVisible_ = false;
    bool isHoldModeActive_ = false;
    /// The open session; main thread alone sets it.
    std::optional<TapSession> session_;
    /// What the main thread handles now.
    std::optional<TapSession> request_;
    std::uint64_t sessionCount_ = 0;
    bool reenableRequested_ = false;
    KeyboardTap* tapPort_ = nullptr;
};

}  // namespace ferrowyn

#pragma once

#include <string>
#include <vector>

#include "input/tap_state.h"
#include "platform/event_tap.h"

namespace ferrowyn {

/// A tap that writes down what it is told, and what the shared state said at that moment. Reading the state from inside
/// a call also proves that no call is made while its lock is held.
class RecordingEventTap final : public EventTap {
public:
    explicit RecordingEventTap(const TapState& state) : state_(state) {}

    struct SessionCall {
        bool isOpen = false;
        bool wasVisible = false;
        bool wasHolding = false;
        friend bool operator==(const SessionCall&, const SessionCall&) = default;
    };

    void setEnabled(bool enabled) override { isEnabled_ = enabled; }
    [[nodiscard]] bool isEnabled() const override { return isEnabled_; }
    void invalidate() override { calls.emplace_back("invalidate"); }
    void setTrigger(SwitcherModifier modifier) override {
        triggers.push_back(modifier);
        flagsAtTrigger.push_back(state_.snapshot().modifierFlag);
    }
    void setSessionOpen(bool isOpen) override {
        const auto now = state_.snapshot();
        sessions.push_back({isOpen, now.isSwitcherVisible, now.isHoldModeActive});
        calls.emplace_back(isOpen ? "open" : "closed");
    }

    std::vector<std::string> calls;
    std::vector<SessionCall> sessions;
    std::vector<SwitcherModifier> triggers;
    std::vector<std::uint64_t> flagsAtTrigger;

private:
    const TapState& state_;
    bool isEnabled_ = false;
};

}  // namespace ferrowyn

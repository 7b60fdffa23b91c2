#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "core/switcher_options.h"
#include "input/tap_state.h"
#include "platform/keyboard_tap.h"

namespace ferrowyn {

/// An event that types different texts with its own flags, with none and with Shift alone, so that a test sees which
/// one was asked for.
class StubTapEvent final : public TapEvent {
public:
    StubTapEvent(Type type, std::uint16_t keyCode, std::uint64_t flags)
        : type_(type), keyCode_(keyCode), flags_(flags) {}

    [[nodiscard]] Type type() const override { return type_; }
    [[nodiscard]] std::uint64_t flags() const override { return flags_; }
    [[nodiscard]] std::uint16_t keyCode() const override { return keyCode_; }
    [[nodiscard]] std::u16string text(std::optional<std::uint64_t> withFlags) const override {
        if (!withFlags) {
            return ownText;
        }
        return *withFlags == event_flags::shift ? shiftedText : (*withFlags == 0 ? plainText : wrongText);
    }

    std::u16string ownText = u"own";
    std::u16string plainText = u"plain";
    std::u16string shiftedText = u"shifted";
    std::u16string wrongText = u"asked with other flags";

private:
    Type type_;
    std::uint16_t keyCode_;
    std::uint64_t flags_;
};

/// A tap that writes down what it is told, and what the shared state said at that moment. Reading the state from inside
/// a call also proves that no call is made while its lock is held.
class RecordingTap final : public KeyboardTap {
public:
    explicit RecordingTap(const TapState& state) : state_(state) {}

    struct SessionCall {
        bool isOpen = false;
        bool wasVisible = false;
        bool wasHolding = false;
        TapSession session{};
        friend bool operator==(const SessionCall&, const SessionCall&) = default;
    };

    void setEnabled(bool enabled) override { isEnabled_ = enabled; }
    [[nodiscard]] bool isEnabled() const override { return isEnabled_; }
    void setTrigger(SwitcherModifier modifier) override {
        triggers.push_back(modifier);
        flagsAtTrigger.push_back(state_.snapshot().modifierFlag);
    }
    void openSession(TapSession session) override { note(true, session); }
    void closeSession(TapSession session) override { note(false, session); }
    [[nodiscard]] bool hasGivenUp(TapSession session) const override { return session == givenUp; }

    std::optional<TapSession> givenUp;
    std::vector<std::string> calls;
    std::vector<SessionCall> sessions;
    std::vector<SwitcherModifier> triggers;
    std::vector<std::uint64_t> flagsAtTrigger;

private:
    void note(bool isOpen, TapSession session) {
        const auto now = state_.snapshot();
        sessions.push_back({isOpen, now.isSwitcherVisible, now.isHoldModeActive, session});
        calls.emplace_back(isOpen ? "open" : "closed");
    }

    const TapState& state_;
    bool isEnabled_ = false;
};

}  // namespace ferrowyn

#pragma once

#include <memory>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <utility>

#include "platform/keyboard_tap.h"

namespace ferrowyn {

class SimulatedKeyboardTaps;

/// A key as a test presses it.
struct SimulatedKey {
    std::uint16_t keyCode = 0;
    std::uint64_t flags = 0;
    /// What the key types with all of its flags, and with Shift alone or no flag.
    std::u16string text;
    std::u16string textWithReducedFlags;
};

class SimulatedTapEvent final : public TapEvent {
public:
    SimulatedTapEvent(Type type, SimulatedKey key) : type_(type), key_(std::move(key)) {}

    [[nodiscard]] Type type() const override { return type_; }
    [[nodiscard]] std::uint64_t flags() const override { return key_.flags; }
    [[nodiscard]] std::uint16_t keyCode() const override { return key_.keyCode; }
    [[nodiscard]] std::u16string text(std::optional<std::uint64_t> withFlags) const override {
        return withFlags ? key_.textWithReducedFlags : key_.text;
    }

private:
    Type type_;
    SimulatedKey key_;
};

/// A tap without a thread: the keys that a test presses are delivered in the thread that presses them.
class SimulatedKeyboardTap final : public KeyboardTap {
public:
    SimulatedKeyboardTap(SimulatedKeyboardTaps& taps, SwitcherModifier trigger, TapCallback callback);
    ~SimulatedKeyboardTap() override;
    SimulatedKeyboardTap(const SimulatedKeyboardTap&) = delete;
    SimulatedKeyboardTap& operator=(const SimulatedKeyboardTap&) = delete;

    void setEnabled(bool enabled) override;
    [[nodiscard]] bool isEnabled() const override;
    void setTrigger(SwitcherModifier modifier) override;
    void openSession(TapSession session) override;
    void closeSession(TapSession session) override;
    [[nodiscard]] bool hasGivenUp(TapSession session) const override;

    [[nodiscard]] SwitcherModifier trigger() const;
    [[nodiscard]] bool isSessionOpen() const;

    /// Asks the callback for a verdict. Nothing when the tap is disabled.
    [[nodiscard]] std::optional<TapVerdict> deliver(const TapEvent& event);
    /// Disables the tap first, then delivers the event for that, as the system does.
    void disableBySystem(TapEvent::Type reason);
    /// Gives up the session that was requested last, if it has no answer yet.
    void giveUpRequest();

private:
    SimulatedKeyboardTaps& taps_;
    const TapCallback callback_;
    mutable std::mutex lock_;
    SwitcherModifier trigger_;
    bool isEnabled_ = true;
    std::optional<TapSession> session_;
    std::optional<TapSession> request_;
    std::set<TapSession> givenUp_;
};

/// Starts taps that get a test's keys.
class SimulatedKeyboardTaps final : public KeyboardTaps {
public:
    [[nodiscard]] Start start(SwitcherModifier trigger, TapCallback callback) override;

    /// Whether the application in front got the event.
    bool press(TapEvent::Type type, const SimulatedKey& key);
    /// The tap's verdict on the last event that it got.
    [[nodiscard]] TapVerdict lastVerdict() const { return lastVerdict_; }
    /// The tap started last, or null when it has been removed.
    [[nodiscard]] SimulatedKeyboardTap* installed() const { return installed_; }
    [[nodiscard]] int startCount() const { return startCount_; }
    /// Refuses each start with these words until none are given.
    void setRefusal(std::string words) { refusal_ = std::move(words); }

    /// For the tap's destructor.
    void noteRemoved(const SimulatedKeyboardTap& tap);

private:
    SimulatedKeyboardTap* installed_ = nullptr;
    TapVerdict lastVerdict_;
    int startCount_ = 0;
    std::string refusal_;
};

}  // namespace ferrowyn

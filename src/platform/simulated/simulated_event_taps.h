#pragma once

#include <condition_variable>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <utility>

#include "platform/event_tap.h"

namespace ferrowyn {

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

/// The loop of a real tap thread. It only waits, in real time: simulated keys are delivered in the thread that presses
/// them.
class SimulatedTapRunLoop final : public TapRunLoop {
public:
    void runFor(Seconds slice) override;
    /// A stop between two slices ends the next slice at once.
    void stop() override;

private:
    std::mutex lock_;
    std::condition_variable stopped_;
    bool isStopped_ = false;
};

/// A tap that gets the keys that a test presses. Any thread.
class SimulatedEventTap final : public EventTap {
public:
    SimulatedEventTap(std::uint64_t mask, SwitcherModifier trigger, EventTaps::Callback callback);

    void setEnabled(bool enabled) override;
    [[nodiscard]] bool isEnabled() const override;
    void invalidate() override;
    void setTrigger(SwitcherModifier modifier) override;
    void openSession(TapSession session) override;
    void closeSession(TapSession session) override;

    [[nodiscard]] bool isValid() const;
    [[nodiscard]] SwitcherModifier trigger() const;
    [[nodiscard]] bool isSessionOpen() const;
    void setAttached(bool isAttached);

    /// Asks the callback for a verdict. Nothing when the tap is disabled, has no loop or does not want this type of
    /// event.
    [[nodiscard]] std::optional<TapVerdict> deliver(const TapEvent& event);
    /// Disables the tap first, then delivers the event for that, as the system does.
    void disableBySystem(TapEvent::Type reason);

private:
    mutable std::mutex lock_;
    const std::uint64_t mask_;
    const EventTaps::Callback callback_;
    SwitcherModifier trigger_;
    bool isEnabled_ = false;
    bool isValid_ = true;
    bool isAttached_ = false;
    std::optional<TapSession> session_;
};

/// Creates taps that get a test's keys, and real threads to serve them. Main thread except `currentRunLoop`.
class SimulatedEventTaps final : public EventTaps {
public:
    [[nodiscard]] std::shared_ptr<EventTap> create(std::uint64_t mask, SwitcherModifier trigger,
                                                   Callback callback) override;
    [[nodiscard]] std::shared_ptr<TapRunLoopSource> createSource(const std::shared_ptr<EventTap>& tap) override;
    [[nodiscard]] std::shared_ptr<TapRunLoop> currentRunLoop() override;
    [[nodiscard]] std::unique_ptr<TapThread> startThread(std::string_view name, std::function<void()> body) override;

    /// Whether the application in front got the event.
    bool press(TapEvent::Type type, const SimulatedKey& key);
    /// The tap's verdict on the last event that it got.
    [[nodiscard]] TapVerdict lastVerdict() const { return lastVerdict_; }
    /// The tap made last, while it is installed.
    [[nodiscard]] std::shared_ptr<SimulatedEventTap> installed() const;
    [[nodiscard]] int creationCount() const { return creationCount_; }
    [[nodiscard]] const std::string& threadName() const { return threadName_; }
    void setCreationFails(bool fails) { creationFails_ = fails; }
    void setSourceFails(bool fails) { sourceFails_ = fails; }
    void setThreadFails(bool fails) { threadFails_ = fails; }

private:
    std::weak_ptr<SimulatedEventTap> latest_;
    TapVerdict lastVerdict_;
    int creationCount_ = 0;
    std::string threadName_;
    bool creationFails_ = false;
    bool sourceFails_ = false;
    bool threadFails_ = false;
};

}  // namespace ferrowyn

#pragma once

#include <memory>
#include <optional>
#include <string>

#include "platform/event_tap.h"
#include "platform/simulated/simulated_event_tap.h"
#include "platform/simulated/simulated_tap_event.h"

namespace ferrowyn {

/// Makes taps that a test's keys go through, and real threads to serve them. Main thread but for `currentRunLoop`.
class SimulatedEventTaps final : public EventTaps {
public:
    [[nodiscard]] std::shared_ptr<EventTap> create(std::uint64_t mask, SwitcherModifier trigger,
                                                   Callback callback) override;
    [[nodiscard]] std::shared_ptr<TapRunLoopSource> createSource(const std::shared_ptr<EventTap>& tap) override;
    [[nodiscard]] std::shared_ptr<TapRunLoop> currentRunLoop() override;
    [[nodiscard]] std::unique_ptr<TapThread> startThread(std::string_view name, std::function<void()> body) override;

    /// Whether the application in front got the event.
    bool press(TapEvent::Type type, const SimulatedKey& key);
    /// What the tap said about the last event it was asked about.
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

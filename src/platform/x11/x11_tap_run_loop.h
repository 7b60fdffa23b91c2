#pragma once

#include <memory>
#include <mutex>
#include <vector>

#include "platform/event_tap.h"
#include "platform/x11/x11_tap_mailbox.h"

namespace ferrowyn {

class X11EventTap;

/// Serves taps on the thread that runs it.
class X11TapRunLoop final : public TapRunLoop {
public:
    void runFor(Seconds slice) override;
    void stop() override;

    /// From any thread.
    void add(const std::shared_ptr<X11EventTap>& tap);
    void remove(const std::shared_ptr<X11EventTap>& tap);

private:
    [[nodiscard]] std::vector<std::shared_ptr<X11EventTap>> taps() const;

    /// Only for its bell.
    X11TapMailbox bell_;
    mutable std::mutex lock_;
    std::vector<std::shared_ptr<X11EventTap>> taps_;
    bool isStopped_ = false;
};

/// The source of one tap. The tap belongs to whoever made it as much as to the source.
class X11TapRunLoopSource final : public TapRunLoopSource {
public:
    explicit X11TapRunLoopSource(std::shared_ptr<X11EventTap> tap) : tap_(std::move(tap)) {}

    void addTo(TapRunLoop& loop) override;
    void removeFrom(TapRunLoop& loop) override;

private:
    std::shared_ptr<X11EventTap> tap_;
};

}  // namespace ferrowyn

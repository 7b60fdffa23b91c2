#pragma once

#include <CoreGraphics/CoreGraphics.h>

#include <condition_variable>
#include <deque>
#include <memory>
#include <mutex>
#include <optional>

#include "tests/macos/fake/fake_object.h"

namespace ferrowyn::fake {

/// The port of an event tap, with the events that wait for the thread which serves it. Any thread.
class MachPort final : public Object {
public:
    MachPort(CGEventTapCallBack callback, void* userInfo);
    ~MachPort() override;

    void setEnabled(bool enabled);
    [[nodiscard]] bool isEnabled() const;
    void invalidate();
    [[nodiscard]] bool isValid() const;

    /// What the callback returned, once the serving thread has called it; nothing when no thread did in time.
    [[nodiscard]] std::optional<CGEventRef> ask(CGEventType type, CGEventRef event);
    /// Calls back about one waiting event; false when none waits. The serving thread.
    bool serveNext();

private:
    struct Question {
        CGEventType type;
        CGEventRef event;
        std::optional<CGEventRef> answer;
    };

    CGEventTapCallBack callback_;
    void* userInfo_;
    /// The layer has no use for one.
    CGEventTapProxy proxy_ = nullptr;
    mutable std::mutex lock_;
    std::condition_variable answered_;
    std::deque<std::shared_ptr<Question>> questions_;
    /// A tap delivers from the moment it is made.
    bool isEnabled_ = true;
    bool isValid_ = true;
};

}  // namespace ferrowyn::fake

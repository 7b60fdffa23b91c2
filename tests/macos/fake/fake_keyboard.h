#pragma once

#include <CoreGraphics/CoreGraphics.h>

#include <condition_variable>
#include <cstdint>
#include <deque>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "tests/macos/fake/fake_objects.h"

namespace ferrowyn::fake {

/// The port of an event tap, with the events that wait for the thread which serves it. Any thread.
class MachPort final : public Object {
public:
    MachPort(CGEventTapCallBack callback, void* userInfo);
    ~MachPort() override;

    void setEnabled(bool enabled);
    [[nodiscard]] bool isEnabled() const;
    void invalidate();
    void takeAway();
    [[nodiscard]] bool isValid() const;
    [[nodiscard]] bool isTakenAway() const;

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
    /// The layer does not use it.
    CGEventTapProxy proxy_ = nullptr;
    mutable std::mutex lock_;
    std::condition_variable answered_;
    std::deque<std::shared_ptr<Question>> questions_;
    /// A tap delivers from the moment it is made.
    bool isEnabled_ = true;
    bool isValid_ = true;
    /// Invalidated by the system, which the program need not know.
    bool isTakenAway_ = false;
};

}  // namespace ferrowyn::fake

namespace ferrowyn::fake {

/// The session's keyboard and its taps. Keys are pressed on the main thread; taps answer on theirs.
class Keyboard {
public:
    struct TapRequest {
        CGEventTapLocation location;
        CGEventTapPlacement placement;
        CGEventTapOptions options;
        CGEventMask mask;
        friend bool operator==(const TapRequest&, const TapRequest&) = default;
    };
    struct Key {
        CGEventType type = kCGEventKeyDown;
        std::int64_t keyCode = 0;
        CGEventFlags flags = 0;
    };
    /// What became of a key.
    enum class Outcome {
        reachedApplication,
        swallowed,
        /// The tap let through another event than it was given.
        replaced,
        /// The tap is enabled and no thread serves it: the user's keyboard does nothing.
        stuck,
    };

    [[nodiscard]] static Keyboard& shared();
    void reset();

    bool refusesTaps = false;
    bool refusesSources = false;
    bool refusesCopies = false;
    /// No event is made.
    bool refusesEvents = false;
    /// What a key types with exactly these of the modifier flags; nothing for a key that types nothing.
    std::map<std::pair<std::int64_t, CGEventFlags>, std::u16string> layout;

    [[nodiscard]] Outcome press(const Key& key);
    /// Disables the tap as the system does, and tells its callback; returns when that has been called.
    void disableTap(CGEventType reason);
    /// Invalidates the tap's port, as a system does that goes down.
    void takePortAway();
    [[nodiscard]] bool isTapEnabled() const;
    /// False when it is not enabled within a time that is long even on a loaded machine.
    [[nodiscard]] bool waitUntilTapIsEnabled() const;
    /// Of the tap made last.
    [[nodiscard]] std::optional<TapRequest> tapRequest() const;
    [[nodiscard]] bool hasTap() const;

    // What the fake's functions need.
    /// Notes a fault when the first text of a key is asked for outside the main thread.
    void translate();
    void add(MachPort& port, const TapRequest& request);
    void remove(const MachPort& port);
    void setEnabled(MachPort& port, bool enabled);

private:
    mutable std::mutex lock_;
    mutable std::condition_variable changed_;
    MachPort* port_ = nullptr;
    std::optional<TapRequest> request_;
    std::thread::id mainThread_ = std::this_thread::get_id();
    bool hasTranslated_ = false;
};

}  // namespace ferrowyn::fake

#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "core/switcher_options.h"
#include "platform/main_loop.h"

namespace ferrowyn {

/// One event as a tap sees it. Valid only while the callback runs.
class TapEvent {
public:
    enum class Type : std::uint32_t {
        keyDown = 10,
        keyUp = 11,
        flagsChanged = 12,
        disabledByTimeout = 0xFFFFFFFE,
        disabledByUserInput = 0xFFFFFFFF,
    };

    virtual ~TapEvent() = default;

    [[nodiscard]] virtual Type type() const = 0;
    /// Bits of `event_flags`; others may be set and mean nothing here.
    [[nodiscard]] virtual std::uint64_t flags() const = 0;
    /// The physical key, as an ANSI virtual key code; a key without one has a code of 128 or above. Where a system lets
    /// users move Escape, Tab, the arrows and their like, it is the key that they made so. Key events only.
    [[nodiscard]] virtual std::uint16_t keyCode() const = 0;
    /// The text the key would type with these modifier flags instead of the event's own; the event's own when
    /// nothing is given. UTF-16, may be empty, may hold control characters. Key-down events only.
    [[nodiscard]] virtual std::u16string text(std::optional<std::uint64_t> withFlags) const = 0;
};

/// Names a session towards the tap. Whoever makes the tap's callback numbers the sessions; no two have the same number.
enum class TapSession : std::uint64_t {};

/// What becomes of an event.
struct TapVerdict {
    /// The event does not reach the application in front.
    bool isSwallowed = false;
    /// The event asks for this session, which the main thread will open or not. A tap that must seize the keyboard for
    /// a session holds back the events that follow until `openSession` or `closeSession` tells it which.
    std::optional<TapSession> requestedSession;
    /// The trigger's modifier went up, and the main thread may end the session for that: `openSession` or
    /// `closeSession` tells whether it did. A tap that seizes the keyboard holds back a trigger until then, because it
    /// may belong to the next session.
    bool mayEndSession = false;
    friend bool operator==(const TapVerdict&, const TapVerdict&) = default;
};

/// The tap thread's event loop. Made on that thread, stopped from any.
class TapRunLoop {
public:
    virtual ~TapRunLoop() = default;

    /// Handles events for up to `slice`; returns earlier when it was stopped. Tap thread.
    virtual void runFor(Seconds slice) = 0;
    /// Makes `runFor` return soon. From any thread.
    virtual void stop() = 0;
};

/// An installed keyboard tap. Thread-safe; destroying it removes it.
class EventTap {
public:
    virtual ~EventTap() = default;

    /// A tap that no loop serves yet may be enabled: it lets every event pass until one does. It is disabled before its
    /// source is removed.
    virtual void setEnabled(bool enabled) = 0;
    /// What was last asked for, served or not; false after the system disabled the tap and while it has no connection
    /// to the system, until it is enabled again.
    [[nodiscard]] virtual bool isEnabled() const = 0;
    /// The tap delivers nothing any more, for good, and gives back whatever of the keyboard it holds.
    virtual void invalidate() = 0;

    /// Which modifier opens the switcher. A tap that sees every key may ignore it; one that must register its keys
    /// registers these.
    virtual void setTrigger(SwitcherModifier modifier) = 0;
    /// This session has opened, or goes on after an event that might have ended it. It is the one that was asked for,
    /// or one that was opened without a key. A tap that must seize the keyboard holds it only from the trigger to the
    /// end of the session; one that filters every event may ignore both calls.
    virtual void openSession(TapSession session) = 0;
    /// This session has ended, or was asked for and not opened. Without effect when the tap is at another session: the
    /// end of one that the tap has lost already may come after the next one was asked for.
    virtual void closeSession(TapSession session) = 0;
};

/// The run-loop source of a tap: attaching it to the tap thread's loop makes the events come.
class TapRunLoopSource {
public:
    virtual ~TapRunLoopSource() = default;

    /// Tap thread.
    virtual void addTo(TapRunLoop& loop) = 0;
    /// From any thread.
    virtual void removeFrom(TapRunLoop& loop) = 0;
};

/// A running thread; destroying it joins it, so the body must be able to end by then.
class TapThread {
public:
    virtual ~TapThread() = default;
};

/// Makes event taps, and the thread that serves one.
class EventTaps {
public:
    virtual ~EventTaps() = default;

    /// Called on the tap thread; must not block.
    using Callback = std::function<TapVerdict(const TapEvent&)>;

    /// The mask of event types: bit n set asks for type n.
    static constexpr std::uint64_t keyboardMask = 0x1C00;

    /// Installs a session-wide, filtering tap ahead of all others, disabled at first; null when the system refuses.
    /// Main thread.
    [[nodiscard]] virtual std::shared_ptr<EventTap> create(std::uint64_t mask, SwitcherModifier trigger,
                                                           Callback callback) = 0;
    /// Null when it cannot be made. Main thread.
    [[nodiscard]] virtual std::shared_ptr<TapRunLoopSource> createSource(const std::shared_ptr<EventTap>& tap) = 0;
    /// The loop of the calling thread. Tap thread.
    [[nodiscard]] virtual std::shared_ptr<TapRunLoop> currentRunLoop() = 0;
    /// Starts a thread with this name at the highest quality of service; null when the system refuses. Main thread.
    [[nodiscard]] virtual std::unique_ptr<TapThread> startThread(std::string_view name, std::function<void()> body) = 0;
};

}  // namespace ferrowyn

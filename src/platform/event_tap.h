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
    /// Bits of `event_flags`. Other bits may be set and have no meaning here.
    [[nodiscard]] virtual std::uint64_t flags() const = 0;
    /// The physical key as an ANSI virtual key code; 128 or above for a key without one. Where users can remap Escape,
    /// Tab, the arrows and similar keys, the code is that of the remapped key. Key events only.
    [[nodiscard]] virtual std::uint16_t keyCode() const = 0;
    /// The text that the key types with these modifier flags, or with the flags of the event when none are given.
    /// UTF-16; may be empty and may contain control characters. Key-down events only.
    [[nodiscard]] virtual std::u16string text(std::optional<std::uint64_t> withFlags) const = 0;
};

/// Identifies a session to the tap. The creator of the tap's callback gives each session a different number.
enum class TapSession : std::uint64_t {};

/// The decision about one event.
struct TapVerdict {
    /// The event does not reach the application in front.
    bool isSwallowed = false;
    /// The event requests this session. The main thread answers with `openSession` or `closeSession`. A tap that must
    /// seize the keyboard for a session holds back the following events until then.
    std::optional<TapSession> requestedSession;
    /// The trigger's modifier went up, and the main thread may end the session for that. It answers with `openSession`
    /// (the session goes on) or `closeSession`. A tap that seizes the keyboard holds back a trigger until then, because
    /// it may belong to the next session.
    bool mayEndSession = false;
    friend bool operator==(const TapVerdict&, const TapVerdict&) = default;
};

/// The event loop of the tap thread. Created on that thread; any thread may stop it.
class TapRunLoop {
public:
    virtual ~TapRunLoop() = default;

    /// Handles events for up to `slice`. Returns earlier when `stop` is called. Tap thread.
    virtual void runFor(Seconds slice) = 0;
    /// Makes `runFor` return soon. From any thread.
    virtual void stop() = 0;
};

/// An installed keyboard tap. Thread-safe; destroying it removes it.
class EventTap {
public:
    virtual ~EventTap() = default;

    /// Enables or disables the tap. A tap that no loop serves yet may be enabled; it lets every event pass until then.
    /// Callers disable a tap before they remove its source.
    virtual void setEnabled(bool enabled) = 0;
    /// The last value given to `setEnabled`. False after the system disabled the tap or the connection to the system
    /// was lost, until it is enabled again.
    [[nodiscard]] virtual bool isEnabled() const = 0;
    /// Ends the tap for good: it delivers no more events and releases its grabs of the keyboard.
    virtual void invalidate() = 0;

    /// Sets the modifier that opens the switcher. A tap that must register its keys registers the trigger with this
    /// modifier; a tap that sees every key may ignore it.
    virtual void setTrigger(SwitcherModifier modifier) = 0;
    /// This session has opened, or goes on after an event that might have ended it. It was requested by an event, or
    /// opened without a key. A tap that must seize the keyboard holds it only from the trigger to the end of the
    /// session; a tap that filters every event may ignore this call and `closeSession`.
    virtual void openSession(TapSession session) = 0;
    /// This session has ended, or was requested and not opened. Has no effect when the tap has another session: the end
    /// of a session that the tap has lost may come after the next one was requested.
    virtual void closeSession(TapSession session) = 0;
};

/// The run-loop source of a tap. The tap delivers events while the source is attached to the tap thread's loop.
class TapRunLoopSource {
public:
    virtual ~TapRunLoopSource() = default;

    /// Tap thread.
    virtual void addTo(TapRunLoop& loop) = 0;
    /// From any thread.
    virtual void removeFrom(TapRunLoop& loop) = 0;
};

/// A running thread. Destroying it joins it, so its body must end by then.
class TapThread {
public:
    virtual ~TapThread() = default;
};

/// Creates event taps, and the thread that serves one.
class EventTaps {
public:
    virtual ~EventTaps() = default;

    /// Called on the tap thread; must not block.
    using Callback = std::function<TapVerdict(const TapEvent&)>;

    /// The mask of event types: bit n set asks for type n.
    static constexpr std::uint64_t keyboardMask = 0x1C00;

    /// Installs a tap for the whole login session that filters events before all other taps; disabled at first. Null
    /// when the system refuses. Main thread.
    [[nodiscard]] virtual std::shared_ptr<EventTap> create(std::uint64_t mask, SwitcherModifier trigger,
                                                           Callback callback) = 0;
    /// Null when the system refuses. Main thread.
    [[nodiscard]] virtual std::shared_ptr<TapRunLoopSource> createSource(const std::shared_ptr<EventTap>& tap) = 0;
    /// The loop of the calling thread. Tap thread.
    [[nodiscard]] virtual std::shared_ptr<TapRunLoop> currentRunLoop() = 0;
    /// Starts a thread with this name at the highest quality of service; null when the system refuses. Main thread.
    [[nodiscard]] virtual std::unique_ptr<TapThread> startThread(std::string_view name, std::function<void()> body) = 0;
};

}  // namespace ferrowyn

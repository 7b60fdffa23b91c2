#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "core/switcher_options.h"
#include "platform/main_loop.h"

namespace ferrowyn {

/// ANSI virtual key codes, which name the keys on every desktop.
namespace virtual_key {
inline constexpr std::uint16_t d = 2, l = 37;
inline constexpr std::uint16_t returnKey = 36, tab = 48, grave = 50, backspace = 51, escape = 53, keypadEnter = 76;
inline constexpr std::uint16_t home = 115, pageUp = 116, forwardDelete = 117, end = 119, pageDown = 121;
inline constexpr std::uint16_t leftArrow = 123, rightArrow = 124, downArrow = 125, upArrow = 126;
/// All keys that open the switcher with some modifier.
inline constexpr std::array triggers{tab, grave};
}  // namespace virtual_key

/// The keys that open the switcher together with the modifier of this event flag. Beside Tab the system's own switcher
/// listens to Command and the key above Tab; taking its place means taking both.
[[nodiscard]] constexpr std::span<const std::uint16_t> triggerKeys(std::uint64_t modifierFlag) {
    const std::span all(virtual_key::triggers);
    return modifierFlag == event_flags::command ? all : all.first(1);
}

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

/// Decides about one event. Called on the tap's thread; must not block.
using TapCallback = std::function<TapVerdict(const TapEvent&)>;

/// An installed keyboard tap and the thread that serves it. It filters the key presses, key releases and changes of the
/// modifiers of the whole login session, before all other taps. Thread-safe, except for its destruction: on the main
/// thread, it disables and removes the tap, gives back what the tap holds of the keyboard, and waits for the thread;
/// the callback is not called any more after that.
class KeyboardTap {
public:
    virtual ~KeyboardTap() = default;

    virtual void setEnabled(bool enabled) = 0;
    /// True after the start, then the last value given to `setEnabled`. False after the system disabled the tap or the
    /// connection to the system was lost, until the tap is enabled again.
    [[nodiscard]] virtual bool isEnabled() const = 0;

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
    /// Whether the tap has given this request up, because the main thread did not answer in time or something else
    /// needed the keyboard. What the user has typed since went to the application, so the main thread opens no session
    /// for it any more, and answers with `closeSession`. When the main thread was just opening the session, the tap
    /// answers `openSession` with `disabledByUserInput`, which ends it; it may stay enabled. A tap that holds no events
    /// back gives nothing up.
    [[nodiscard]] virtual bool hasGivenUp(TapSession session) const = 0;
};

/// Starts keyboard taps. Outlives them. Main thread.
class KeyboardTaps {
public:
    virtual ~KeyboardTaps() = default;

    /// Exactly one of the two is set.
    struct Start {
        std::unique_ptr<KeyboardTap> tap;
        /// Why there is no tap, in words for the log.
        std::string refusal;
    };

    /// The name of the thread that serves a tap. It runs at the highest priority that the system grants.
    static constexpr std::string_view threadName = "com.larkmoor.event-tap";
    /// How long `start` waits for that thread. A thread that is slower serves the tap from its own start on; until
    /// then no key waits for it.
    static constexpr Seconds threadStartTimeout{1.0};
    static constexpr std::string_view threadRefusal = "The event tap's thread cannot be started";

    /// Installs an enabled tap and starts its thread. When any step of that is refused, nothing of the tap is left.
    [[nodiscard]] virtual Start start(SwitcherModifier trigger, TapCallback callback) = 0;
};

}  // namespace ferrowyn

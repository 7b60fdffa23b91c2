#pragma once

#include <optional>
#include <string>

#include "core/switcher_command.h"
#include "input/tap_state.h"

namespace ferrowyn {

class TapEvent;

/// What becomes of one keyboard event, decided from copies alone: no lock, no wait, no other state.
struct KeyDecision {
    enum class Kind {
        /// The event goes on; nothing is sent.
        pass,
        /// The event ends here; the command, if there is one, is sent.
        swallow,
        /// The event goes on and the command is sent.
        passAndSend,
    };
    Kind kind = Kind::pass;
    std::optional<SwitcherCommand> command;
    friend bool operator==(const KeyDecision&, const KeyDecision&) = default;
};

/// Tap thread.
[[nodiscard]] KeyDecision classify(const TapEvent& event, const TapState::Snapshot& state);

/// The text (UTF-8) that a key-down event types ignoring all modifiers except Shift; nothing for keys that type none or
/// type control characters. Tap thread.
[[nodiscard]] std::optional<std::string> typedText(const TapEvent& event);

}  // namespace ferrowyn

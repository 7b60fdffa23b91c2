#include "input/key_classifier.h"

#include <algorithm>
#include <cstdint>
#include <utility>

#include "core/text.h"
#include "core/text_encoding.h"
#include "platform/keyboard_tap.h"

namespace ferrowyn {

namespace {

namespace key = virtual_key;

/// How many lines Page Up and Page Down move.
constexpr int linesPerPage = 4;

KeyDecision passed() {
    return {};
}

KeyDecision swallowed(std::optional<SwitcherCommand> command = std::nullopt) {
    return {KeyDecision::Kind::swallow, std::move(command)};
}

bool isHeld(std::uint64_t flags, const TapState::Snapshot& state) {
    return (flags & state.modifierFlag) == state.modifierFlag;
}

bool isTrigger(std::uint16_t keyCode, std::uint64_t flags, const TapState::Snapshot& state) {
    return std::ranges::count(triggerKeys(state.modifierFlag), keyCode) > 0 && isHeld(flags, state);
}

/// The command of a key that has one of its own during a session.
std::optional<SwitcherCommand> sessionCommand(std::uint16_t keyCode, std::uint64_t flags) {
    const bool hasCommand = (flags & event_flags::command) != 0;
    switch (keyCode) {
        case key::returnKey:
        case key::keypadEnter:
            return command::Confirm{};
        case key::escape:
            return command::Cancel{};
        case key::home:
            return command::MoveToEdge{true};
        case key::end:
            return command::MoveToEdge{false};
        case key::pageUp:
            return command::MoveVertical{-linesPerPage};
        case key::pageDown:
            return command::MoveVertical{linesPerPage};
        case key::leftArrow:
            return command::Move{-1};
        case key::rightArrow:
            return command::Move{1};
        case key::upArrow:
            return command::MoveVertical{-1};
        case key::downArrow:
            return command::MoveVertical{1};
        case key::tab:
            return command::Move{(flags & event_flags::shift) != 0 ? -1 : 1};
        case key::d:
            return hasCommand ? std::optional<SwitcherCommand>(command::ToggleFavourite{}) : std::nullopt;
        case key::l:
            return hasCommand ? std::optional<SwitcherCommand>(command::ToggleLayout{}) : std::nullopt;
        case key::backspace:
            if ((flags & (event_flags::command | event_flags::option)) != 0) {
                return command::ClearQuery{};
            }
            return command::DeleteBackward{};
        default:
            return std::nullopt;
    }
}

KeyDecision classifyKeyDown(const TapEvent& event, const TapState::Snapshot& state) {
    const std::uint16_t keyCode = event.keyCode();
    const std::uint64_t flags = event.flags();
    if (isTrigger(keyCode, flags, state)) {
        return swallowed(command::Invoke{(flags & event_flags::shift) != 0});
    }
    if (!state.isSwitcherVisible) {
        return passed();
    }
    if (auto ownCommand = sessionCommand(keyCode, flags)) {
        return swallowed(std::move(ownCommand));
    }
    if ((flags & event_flags::command) != 0 || isHeld(flags, state)) {
        if (const auto ordinal = digitOrdinal(keyCode)) {
            return swallowed(command::SelectIndex{*ordinal});
        }
    }
    // Control combinations type control characters at best; they end here so that they do not reach the application.
    if ((flags & event_flags::control) == 0) {
        if (auto text = typedText(event)) {
            return swallowed(command::InsertText{std::move(*text)});
        }
    }
    return swallowed();
}

}  // namespace

KeyDecision classify(const TapEvent& event, const TapState::Snapshot& state) {
    switch (event.type()) {
        case TapEvent::Type::keyDown:
            return classifyKeyDown(event, state);
        case TapEvent::Type::keyUp:
            // The release of a swallowed key must not reach an application that never saw the press.
            return state.isSwitcherVisible ? swallowed() : passed();
        case TapEvent::Type::flagsChanged:
            if (state.isSwitcherVisible && state.isHoldModeActive && !isHeld(event.flags(), state)) {
                return {KeyDecision::Kind::passAndSend, command::ModifierReleased{}};
            }
            return passed();
        case TapEvent::Type::disabledByTimeout:
        case TapEvent::Type::disabledByUserInput:
            break;
    }
    return passed();
}

std::optional<std::string> typedText(const TapEvent& event) {
    constexpr std::uint64_t textChangingFlags = event_flags::control | event_flags::option | event_flags::command;
    const std::uint64_t flags = event.flags();
    const std::u16string units =
        (flags & textChangingFlags) != 0 ? event.text(flags & event_flags::shift) : event.text(std::nullopt);
    if (units.empty()) {
        return std::nullopt;
    }
    std::string result = text::utf8FromUtf16(units);
    if (result.empty() || text::containsControlCharacter(result)) {
        return std::nullopt;
    }
    return result;
}

}  // namespace ferrowyn

#include "core/switcher_modifier.h"

namespace ferrowyn {

std::string_view rawValue(SwitcherModifier modifier) {
    switch (modifier) {
        case SwitcherModifier::option:
            return "option";
        case SwitcherModifier::command:
            return "command";
        case SwitcherModifier::control:
            return "control";
    }
    return "option";
}

std::optional<SwitcherModifier> switcherModifierFromRawValue(std::string_view raw) {
    for (const auto modifier : allSwitcherModifiers) {
        if (rawValue(modifier) == raw) {
            return modifier;
        }
    }
    return std::nullopt;
}

std::uint64_t flagMask(SwitcherModifier modifier) {
    switch (modifier) {
        case SwitcherModifier::option:
            return event_flags::option;
        case SwitcherModifier::command:
            return event_flags::command;
        case SwitcherModifier::control:
            return event_flags::control;
    }
    return event_flags::option;
}

std::string_view symbol(SwitcherModifier modifier) {
    switch (modifier) {
        case SwitcherModifier::option:
            return "⌥";
        case SwitcherModifier::command:
            return "⌘";
        case SwitcherModifier::control:
            return "⌃";
    }
    return "⌥";
}

std::string_view name(SwitcherModifier modifier) {
    switch (modifier) {
        case SwitcherModifier::option:
            return "Option";
        case SwitcherModifier::command:
            return "Command";
        case SwitcherModifier::control:
            return "Control";
    }
    return "Option";
}

}  // namespace ferrowyn

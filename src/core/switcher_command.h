#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <variant>

namespace ferrowyn {

namespace command {

/// The trigger was pressed; `reverse` when Shift was also held.
struct Invoke {
    bool reverse = false;
    friend bool operator==(const Invoke&, const Invoke&) = default;
};
/// Move the selection by `step` rows, wrapping.
struct Move {
    int step = 0;
    friend bool operator==(const Move&, const Move&) = default;
};
/// Move by `step` lines: one row in list and grouped layout, one line of cards in the grid.
struct MoveVertical {
    int step = 0;
    friend bool operator==(const MoveVertical&, const MoveVertical&) = default;
};
/// Jump to the first row, or to the last.
struct MoveToEdge {
    bool first = false;
    friend bool operator==(const MoveToEdge&, const MoveToEdge&) = default;
};
/// Jump straight to the row with this ordinal, counted from 1.
struct SelectIndex {
    int ordinal = 0;
    friend bool operator==(const SelectIndex&, const SelectIndex&) = default;
};
/// Append typed characters (UTF-8) to the query.
struct InsertText {
    std::string text;
    friend bool operator==(const InsertText&, const InsertText&) = default;
};
struct Confirm {
    friend bool operator==(const Confirm&, const Confirm&) = default;
};
struct Cancel {
    friend bool operator==(const Cancel&, const Cancel&) = default;
};
struct DeleteBackward {
    friend bool operator==(const DeleteBackward&, const DeleteBackward&) = default;
};
struct ClearQuery {
    friend bool operator==(const ClearQuery&, const ClearQuery&) = default;
};
struct ToggleLayout {
    friend bool operator==(const ToggleLayout&, const ToggleLayout&) = default;
};
struct ToggleFavourite {
    friend bool operator==(const ToggleFavourite&, const ToggleFavourite&) = default;
};
struct ModifierReleased {
    friend bool operator==(const ModifierReleased&, const ModifierReleased&) = default;
};

}  // namespace command

/// What the keyboard layer asks of the switcher; compared by value.
using SwitcherCommand =
    std::variant<command::Invoke, command::Move, command::MoveVertical, command::MoveToEdge, command::SelectIndex,
                 command::InsertText, command::Confirm, command::Cancel, command::DeleteBackward, command::ClearQuery,
                 command::ToggleLayout, command::ToggleFavourite, command::ModifierReleased>;

/// The ordinal 1 to 9 of a digit key, by its virtual key code (the ANSI digit row); nothing for any other key, also for
/// 0.
[[nodiscard]] std::optional<int> digitOrdinal(std::uint16_t keyCode);

}  // namespace ferrowyn

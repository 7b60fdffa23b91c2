#include "core/switcher_options.h"

#include <algorithm>

namespace ferrowyn {

namespace {

constexpr int gridColumns = 5;
/// One line of cards is about as high as this many rows of the list.
constexpr int listRowsPerGridLine = 3;

int dividedRoundingUp(int dividend, int divisor) {
    return dividend / divisor + (dividend % divisor > 0 ? 1 : 0);
}

template <typename Value, std::size_t count>
std::optional<Value> withRawValue(const std::array<Value, count>& all, std::string_view raw) {
    const auto found = std::ranges::find(all, raw, [](Value value) { return rawValue(value); });
    return found == all.end() ? std::nullopt : std::optional(*found);
}

}  // namespace

std::string_view rawValue(SwitcherLayout layout) {
    switch (layout) {
        case SwitcherLayout::list:
            return "list";
        case SwitcherLayout::grouped:
            return "grouped";
        case SwitcherLayout::grid:
            return "grid";
    }
    return "list";
}

std::optional<SwitcherLayout> switcherLayoutFromRawValue(std::string_view raw) {
    return withRawValue(allSwitcherLayouts, raw);
}

std::string_view title(SwitcherLayout layout, const UtilityTexts& texts) {
    switch (layout) {
        case SwitcherLayout::list:
            return texts.settings.listTitle;
        case SwitcherLayout::grouped:
            return texts.settings.groupedTitle;
        case SwitcherLayout::grid:
            return texts.settings.gridTitle;
    }
    return texts.settings.listTitle;
}

int columns(SwitcherLayout layout) {
    return layout == SwitcherLayout::grid ? gridColumns : 1;
}

int lineCount(SwitcherLayout layout, int items) {
    return items < 1 ? 0 : dividedRoundingUp(items, columns(layout));
}

int visibleLineCount(SwitcherLayout layout, int maximumRows) {
    const int lines =
        layout == SwitcherLayout::grid ? dividedRoundingUp(maximumRows, listRowsPerGridLine) : maximumRows;
    return std::max(lines, 1);
}

SwitcherLayout nextLayout(SwitcherLayout layout) {
    const auto* const found = std::find(allSwitcherLayouts.begin(), allSwitcherLayouts.end(), layout);
    if (found == allSwitcherLayouts.end() || found + 1 == allSwitcherLayouts.end()) {
        return allSwitcherLayouts.front();
    }
    return *(found + 1);
}

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
    return withRawValue(allSwitcherModifiers, raw);
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

std::string_view rawValue(SettingsPane pane) {
    switch (pane) {
        case SettingsPane::general:
            return "general";
        case SettingsPane::shortcut:
            return "shortcut";
        case SettingsPane::appearance:
            return "appearance";
        case SettingsPane::windows:
            return "windows";
        case SettingsPane::favourites:
            return "favourites";
        case SettingsPane::about:
            return "about";
    }
    return "general";
}

std::optional<SettingsPane> settingsPaneFromRawValue(std::string_view raw) {
    return withRawValue(allSettingsPanes, raw);
}

std::string_view title(SettingsPane pane, const UtilityTexts& texts) {
    switch (pane) {
        case SettingsPane::general:
            return texts.settings.generalTitle;
        case SettingsPane::shortcut:
            return texts.settings.shortcutTitle;
        case SettingsPane::appearance:
            return texts.settings.appearanceTitle;
        case SettingsPane::windows:
            return texts.settings.windowsTitle;
        case SettingsPane::favourites:
            return texts.settings.favouritesTitle;
        case SettingsPane::about:
            return texts.settings.aboutTitle;
    }
    return texts.settings.generalTitle;
}

std::string_view symbol(SettingsPane pane) {
    switch (pane) {
        case SettingsPane::general:
            return "gearshape";
        case SettingsPane::shortcut:
            return "keyboard";
        case SettingsPane::appearance:
            return "paintbrush";
        case SettingsPane::windows:
            return "macwindow";
        case SettingsPane::favourites:
            return "star";
        case SettingsPane::about:
            return "info.circle";
    }
    return "gearshape";
}

}  // namespace ferrowyn

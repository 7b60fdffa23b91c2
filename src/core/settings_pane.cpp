#include "core/settings_pane.h"

namespace ferrowyn {

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
    for (const auto pane : allSettingsPanes) {
        if (rawValue(pane) == raw) {
            return pane;
        }
    }
    return std::nullopt;
}

std::string_view title(SettingsPane pane, const WindowTexts& texts) {
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

#pragma once

#include <string_view>

namespace ferrowyn {

/// The texts of the status item and its menu, in the language in which they were written. "%1" stands for what is put
/// in. They are the same on every desktop, save those that name what the program needs there.
struct StatusItemTexts {
    /// How the shortcut is doing: on the button, below the program's name, and as the row that repairs it.
    struct Health {
        std::string_view tooltip;
        std::string_view subtitle;
        /// Empty where nothing needs repair.
        std::string_view repair;
    };

    /// The same in every language.
    std::string_view programName;
    /// The button in the menu's header, for assistive technology.
    std::string_view settingsButton;

    Health ready;
    Health accessRequired;
    /// Where the display server can lack what the program needs; empty elsewhere.
    Health serverUnusable;
    Health trustRevoked;
    Health repeatedTimeouts;
    Health secureInput;
    Health triggerAnsweredElsewhere;
    Health activationsUnconfirmed;

    std::string_view openSwitcher;
    std::string_view oneWindow;
    std::string_view manyWindows;
    /// In upper case already.
    std::string_view layoutSection;
    std::string_view launchAtLogin;
    std::string_view settings;
    std::string_view setupGuide;
    std::string_view update;
    /// Why that row cannot be chosen.
    std::string_view noDownloadPage;
    std::string_view about;
    std::string_view quit;
};

[[nodiscard]] const StatusItemTexts& macStatusItemTexts();
[[nodiscard]] const StatusItemTexts& linuxStatusItemTexts();

}  // namespace ferrowyn

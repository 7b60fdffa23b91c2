#pragma once

#include <string_view>

namespace ferrowyn {

/// The texts of the utility windows (settings, setup and about), in English. "%1" and "%2" stand for arguments. Only
/// those that name a system, its settings or its keys differ between desktops.
struct UtilityTexts {
    struct Settings {
        std::string_view generalTitle;
        std::string_view shortcutTitle;
        std::string_view appearanceTitle;
        std::string_view windowsTitle;
        std::string_view favouritesTitle;
        std::string_view aboutTitle;
        /// What a screen reader calls the list of panes.
        std::string_view sidebarName;

        std::string_view launchAtLogin;
        std::string_view openLoginItems;
        std::string_view updatesSection;
        std::string_view automaticUpdates;
        std::string_view automaticUpdatesNote;
        std::string_view checkNow;
        std::string_view checking;
        std::string_view notChecked;
        /// Shown when no update server is configured.
        std::string_view noUpdateServer;
        std::string_view upToDate;
        std::string_view updateAvailable;
        std::string_view permissionsSection;
        std::string_view permissionGranted;
        std::string_view permissionRequired;
        std::string_view openSettings;
        std::string_view secureInput;

        std::string_view summonWith;
        std::string_view summonChoice;
        std::string_view optionName;
        std::string_view commandName;
        std::string_view controlName;
        std::string_view commandReplacesNote;
        std::string_view confirmOnRelease;
        std::string_view confirmOnReleaseNote;
        std::string_view keysSection;
        std::string_view keyCycle;
        std::string_view keyPin;
        std::string_view keyJump;
        std::string_view keyMove;
        std::string_view keyClose;

        std::string_view layoutSection;
        std::string_view listTitle;
        std::string_view groupedTitle;
        std::string_view gridTitle;
        std::string_view listDescription;
        std::string_view groupedDescription;
        std::string_view gridDescription;
        std::string_view maximumRows;
        std::string_view showHints;

        std::string_view orderingSection;
        std::string_view activeAppFirst;
        std::string_view activeAppFirstOnNote;
        std::string_view activeAppFirstOffNote;
        std::string_view includeSection;
        std::string_view minimised;
        std::string_view otherSpaces;
        std::string_view otherSpacesNote;

        std::string_view favouritesFirst;
        std::string_view favouritesFirstNote;
        std::string_view pinnedSection;
        std::string_view nothingPinned;
        std::string_view removeHelp;
        std::string_view removeAll;
    };

    struct Onboarding {
        std::string_view grantedTitle;
        std::string_view grantedDetail;
        std::string_view keyOpen;
        std::string_view keyPrevious;
        std::string_view keyJump;
        std::string_view keyCancel;
        std::string_view typingHint;
        std::string_view stayingOpenHint;
        std::string_view done;
        std::string_view requiredTitle;
        std::string_view requiredExplanation;
        std::string_view firstStep;
        std::string_view secondStep;
        std::string_view thirdStep;
        /// Empty where the desktop has no such page and the setup window takes its place.
        std::string_view openSystemSettings;
        std::string_view requestAccess;
        /// Empty where the program makes no report.
        std::string_view copyReport;
        std::string_view revealApp;
        std::string_view troubleTitle;
        std::string_view troubleText;
        std::string_view close;
    };

    struct About {
        std::string_view tagline;
        std::string_view version;
        std::string_view copyright;
        std::string_view summary;
        /// Shown instead of the link when there is no home page.
        std::string_view noHomePage;
        std::string_view close;
    };

    std::string_view setupWindowTitle;
    std::string_view settingsWindowTitle;
    std::string_view aboutWindowTitle;

    Settings settings;
    Onboarding onboarding;
    About about;
    /// Shown instead of the requirements when the display server lacks what the program needs. Empty on desktops where
    /// that cannot happen.
    std::string_view serverUnusable;
    /// Shift, as this desktop's keyboards name it.
    std::string_view shiftKey;
};

[[nodiscard]] const UtilityTexts& macUtilityTexts();
/// The same windows on an X11 desktop with a PC keyboard.
[[nodiscard]] const UtilityTexts& linuxUtilityTexts();

}  // namespace ferrowyn

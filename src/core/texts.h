#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "core/switcher_options.h"
#include "core/utility_texts.h"

namespace ferrowyn {

/// Marks a text for translation where it stands; the translation itself happens where it is shown. The tools find it by
/// the name: lupdate -tr-function-alias QT_TRANSLATE_NOOP+=translatable.
[[nodiscard]] constexpr std::string_view translatable([[maybe_unused]] const char* context, std::string_view text) {
    return text;
}

/// A fixed text and its arguments: "%1" stands for the first one, "%2" for the second. They are separate so that the
/// fixed text can be translated. A plain value.
struct Phrase {
    std::string_view text;
    std::vector<std::string> arguments;

    /// A text from outside, which is shown unchanged.
    [[nodiscard]] static Phrase verbatim(std::string words) { return {"%1", {std::move(words)}}; }

    /// The text with its arguments, in English.
    [[nodiscard]] std::string untranslated() const;

    friend bool operator==(const Phrase&, const Phrase&) = default;
};

/// `text` with each placeholder replaced by its argument. A placeholder without an argument stays.
[[nodiscard]] std::string withArguments(std::string_view text, const std::vector<std::string>& arguments);

/// The texts of the status item and its menu, in English. "%1" stands for an argument. Only those that name what the
/// program needs differ between desktops.
struct StatusItemTexts {
    /// One state of the shortcut: the tooltip of the button, the line below the program's name, and the row that
    /// repairs it.
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
    /// The display server lacks what the program needs. Empty on desktops where that cannot happen.
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
    /// Why the update row cannot be chosen.
    std::string_view noDownloadPage;
    std::string_view about;
    std::string_view quit;
};

[[nodiscard]] const StatusItemTexts& macStatusItemTexts();
[[nodiscard]] const StatusItemTexts& linuxStatusItemTexts();

/// The fixed texts that differ between desktops. Each desktop has one table, so that a test can compare them. Texts
/// that are the same everywhere are beside the logic that uses them.
struct TextTable {
    /// The trigger modifier as the key caps and settings show it: a glyph on a Mac keyboard, a name on a PC keyboard.
    std::string_view optionKey;
    std::string_view commandKey;
    std::string_view controlKey;
    /// The command key in the shortcuts of a session (⌘D). On a PC keyboard this is Ctrl, unless Control is the
    /// trigger.
    std::string_view sessionCommandKey;
    std::string_view sessionCommandKeyWithControlTrigger;
    /// Between a modifier and its key: nothing between glyphs, "+" between names.
    std::string_view keySeparator;
    std::string_view tabKey;
    /// The keys that switch and that close the panel, as the panel's key caps show them.
    std::string_view returnKey;
    std::string_view escapeKey;

    std::string_view permissionTitle;
    std::string_view permissionExplanation;
    std::string_view permissionButton;

    /// "Other Space" where the desktop has Spaces, "Other Workspace" where it has workspaces.
    std::string_view otherSpaceBadge;

    /// Why the program cannot be registered to start at login.
    std::string_view loginItemUnavailable;
    /// The system refused to register or unregister it.
    std::string_view loginItemRefused;
    /// It is registered, and the user has to allow it.
    std::string_view loginItemApproval;

    /// The status item and its menu.
    const StatusItemTexts& statusItem;
    /// The utility windows.
    const UtilityTexts& utility;

    [[nodiscard]] std::string_view modifierKey(SwitcherModifier modifier) const;
    [[nodiscard]] std::string_view commandKeyDuringSession(SwitcherModifier trigger) const;
};

[[nodiscard]] const TextTable& macTexts();
/// The same product on an X11 desktop with a PC keyboard.
[[nodiscard]] const TextTable& linuxTexts();

/// Texts that several Linux tables share.
namespace linux_words {

inline constexpr std::string_view windowManagerRequired = translatable("Ferrowyn", "A window manager is required");
/// The display server lacks what the program needs.
inline constexpr std::string_view serverUnusable = translatable("Ferrowyn", "This X server cannot be used");
inline constexpr std::string_view windowManagerRuns = translatable("Ferrowyn", "A window manager is running");
inline constexpr std::string_view openSetup = translatable("Ferrowyn", "Open Setup");

}  // namespace linux_words

}  // namespace ferrowyn

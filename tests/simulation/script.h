#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace ferrowyn::simulation {

/// What can happen in a simulated session. The user's actions come first, then those of the main loop, then those of
/// the applications and the system.
enum class Action {
    pressModifier,
    releaseModifier,
    loseModifierRelease,
    pressKey,
    releaseKey,
    loseKeyRelease,
    hover,
    click,
    star,
    clickElsewhere,
    movePointer,
    openFromMenu,
    openTrustSettings,
    retryShortcut,
    useWindow,
    set,
    removeFavourite,
    removeAllFavourites,
    settle,
    runOneTask,
    wait,
    stall,
    holdSnapshots,
    launch,
    quit,
    hang,
    ignoreActivation,
    unobservable,
    hide,
    open,
    close,
    retitle,
    minimize,
    fullScreen,
    moveToSpace,
    changeSpace,
    lie,
    block,
    restack,
    frontmost,
    notify,
    notifyLate,
    storm,
    changeScreens,
    serverAnswers,
    numberLookup,
    tapTimesOut,
    tapMeetsUserInput,
    tapDiesSilently,
    tapGivesUp,
    refuseTap,
    trust,
    announceTrust,
    secureInput,
    becomeActive,
    storeFails,
    restartProgram,
};

/// One step of a script: a plain value that can be printed, read back and carried out again. A step that makes no sense
/// at its moment (closing a window that is not there) has no effect, so that steps can be left out of a script.
struct Step {
    Action action = Action::settle;
    /// As many as the action takes; the others are 0.
    std::array<std::int64_t, 3> numbers{};
    std::string text;

    friend bool operator==(const Step&, const Step&) = default;
};

using Script = std::vector<Step>;

/// One line, such as `press-key tab` or `open 7 100 dialog "Save"`.
[[nodiscard]] std::string printed(const Step& step);
[[nodiscard]] std::string printed(const Script& script);
/// Empty lines and lines that begin with # are left out. Nothing when a line is not a step; `error` then says which.
[[nodiscard]] std::optional<Script> parsed(std::string_view text, std::string& error);

/// The keys of the simulated keyboard, each with its virtual key code and what it types.
struct Key {
    std::string_view name;
    std::uint16_t code = 0;
    std::u16string_view plain;
    std::u16string_view shifted;
};
inline constexpr std::array keys{
    Key{"tab", 48, u"\t", u"\t"},
    Key{"grave", 50, u"-", u"_"},
    Key{"return", 36, u"\r", u"\r"},
    Key{"enter", 76, u"\x03", u"\x03"},
    Key{"escape", 53, u"\x1b", u"\x1b"},
    Key{"home", 115, u"", u""},
    Key{"end", 119, u"", u""},
    Key{"page-up", 116, u"", u""},
    Key{"page-down", 121, u"", u""},
    Key{"left", 123, u"", u""},
    Key{"right", 124, u"", u""},
    Key{"up", 126, u"", u""},
    Key{"down", 125, u"", u""},
    Key{"backspace", 51, u"\x7f", u"\x7f"},
    Key{"d", 2, u"d", u"D"},
    Key{"l", 37, u"l", u"L"},
    Key{"1", 18, u"1", u"!"},
    Key{"2", 19, u"2", u"\""},
    Key{"3", 20, u"3", u"#"},
    Key{"4", 21, u"4", u"$"},
    Key{"5", 23, u"5", u"%"},
    Key{"6", 22, u"6", u"&"},
    Key{"7", 26, u"7", u"/"},
    Key{"8", 28, u"8", u"("},
    Key{"9", 25, u"9", u")"},
    Key{"0", 29, u"0", u"="},
    Key{"a", 0, u"a", u"A"},
    Key{"s", 1, u"s", u"S"},
    Key{"e", 14, u"e", u"E"},
    Key{"i", 34, u"i", u"I"},
    Key{"o", 31, u"o", u"O"},
    Key{"m", 46, u"m", u"M"},
    Key{"space", 49, u" ", u" "},
    Key{"e-acute", 140, u"\u00e9", u"\u00c9"},
    Key{"silent", 141, u"", u""},
};

/// Words for the numbers of a step, so that a script can be read.
inline constexpr std::array<std::string_view, 4> modifierWords{"option", "command", "control", "shift"};
inline constexpr std::array<std::uint64_t, 4> modifierMasks{0x80000, 0x100000, 0x40000, 0x20000};
inline constexpr std::array<std::string_view, 10> settingWords{
    "modifier", "include-minimized", "include-other-spaces", "shortcut-hints",   "confirm-on-release", "rows",
    "layout",   "active-app-first",  "favourites-first",     "automatic-updates"};
inline constexpr std::array<std::string_view, 5> windowWords{"standard", "dialog", "unknown", "floating", "small"};
inline constexpr std::array<std::string_view, 8> lieWords{"number",   "no-element", "unlisted",    "no-number",
                                                          "no-frame", "layer",      "transparent", "truth"};
/// Held before they read the desktop, or after that.
inline constexpr std::array<std::string_view, 3> heldSnapshotWords{"off", "unread", "read"};
inline constexpr std::array<std::string_view, 10> notificationWords{
    "window-created",     "focused-window",   "main-window", "application-hidden", "application-shown",
    "application-active", "window-destroyed", "minimized",   "restored",           "title"};

}  // namespace ferrowyn::simulation

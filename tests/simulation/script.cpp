#include "tests/simulation/script.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <span>

namespace ferrowyn::simulation {

namespace {

using Words = std::span<const std::string_view>;

constexpr std::array<std::string_view, 2> onOff{"off", "on"};
constexpr std::array<std::string_view, 2> loudness{"loudly", "silently"};

constexpr auto keyWords = [] {
    std::array<std::string_view, keys.size()> names;
    std::ranges::transform(keys, names.begin(), &Key::name);
    return names;
}();

/// How an action is written: its name, and the words for each of its numbers (none for a plain number).
struct Spelling {
    Action action;
    std::string_view name;
    std::size_t numberCount = 0;
    std::array<Words, 3> words{};
    bool hasText = false;
};

const std::array spellings{
    Spelling{Action::pressModifier, "press-modifier", 1, {modifierWords}},
    Spelling{Action::releaseModifier, "release-modifier", 1, {modifierWords}},
    Spelling{Action::loseModifierRelease, "lose-modifier-release", 1, {modifierWords}},
    Spelling{Action::pressKey, "press-key", 1, {keyWords}},
    Spelling{Action::releaseKey, "release-key", 1, {keyWords}},
    Spelling{Action::loseKeyRelease, "lose-key-release", 1, {keyWords}},
    Spelling{Action::hover, "hover", 1},
    Spelling{Action::click, "click", 1},
    Spelling{Action::star, "star", 1},
    Spelling{Action::clickElsewhere, "click-elsewhere"},
    Spelling{Action::movePointer, "move-pointer", 2},
    Spelling{Action::openFromMenu, "open-from-menu"},
    Spelling{Action::openTrustSettings, "open-trust-settings"},
    Spelling{Action::retryShortcut, "retry-shortcut"},
    Spelling{Action::useWindow, "use-window", 1},
    Spelling{Action::set, "set", 2, {settingWords}},
    Spelling{Action::removeFavourite, "remove-favourite", 1},
    Spelling{Action::removeAllFavourites, "remove-all-favourites"},
    Spelling{Action::settle, "settle"},
    Spelling{Action::runOneTask, "run-one-task"},
    Spelling{Action::wait, "wait-ms", 1},
    Spelling{Action::stall, "stall-ms", 1},
    Spelling{Action::holdSnapshots, "hold-snapshots", 1, {heldSnapshotWords}},
    Spelling{Action::launch, "launch", 2, {}, true},
    Spelling{Action::quit, "quit", 1},
    Spelling{Action::hang, "hang", 2, {Words(), onOff}},
    Spelling{Action::ignoreActivation, "ignore-activation", 2, {Words(), onOff}},
    Spelling{Action::unobservable, "unobservable", 2, {Words(), onOff}},
    Spelling{Action::hide, "hide", 2, {Words(), onOff}},
    Spelling{Action::open, "open", 3, {Words(), Words(), windowWords}, true},
    Spelling{Action::close, "close", 2, {Words(), loudness}},
    Spelling{Action::retitle, "retitle", 2, {Words(), loudness}, true},
    Spelling{Action::minimize, "minimize", 3, {Words(), onOff, loudness}},
    Spelling{Action::fullScreen, "full-screen", 2, {Words(), onOff}},
    Spelling{Action::moveToSpace, "on-this-space", 2, {Words(), onOff}},
    Spelling{Action::changeSpace, "change-space"},
    Spelling{Action::lie, "lie", 3, {Words(), lieWords}},
    Spelling{Action::block, "block", 2},
    Spelling{Action::restack, "restack", 1},
    Spelling{Action::frontmost, "frontmost", 1},
    Spelling{Action::notify, "notify", 2, {Words(), notificationWords}},
    Spelling{Action::notifyLate, "notify-late", 2, {Words(), notificationWords}},
    Spelling{Action::storm, "storm", 2},
    Spelling{Action::changeScreens, "change-screens", 1},
    Spelling{Action::serverAnswers, "server-answers", 1, {onOff}},
    Spelling{Action::numberLookup, "number-lookup", 1, {onOff}},
    Spelling{Action::tapTimesOut, "tap-times-out"},
    Spelling{Action::tapMeetsUserInput, "tap-meets-user-input"},
    Spelling{Action::tapDiesSilently, "tap-dies-silently"},
    Spelling{Action::tapGivesUp, "tap-gives-up"},
    Spelling{Action::refuseTap, "refuse-tap", 1, {onOff}},
    Spelling{Action::trust, "trust", 2, {onOff, loudness}},
    Spelling{Action::announceTrust, "announce-trust"},
    Spelling{Action::secureInput, "secure-input", 1, {onOff}},
    Spelling{Action::becomeActive, "become-active"},
    Spelling{Action::storeFails, "store-fails", 1, {onOff}},
    Spelling{Action::restartProgram, "restart-program"},
};

const Spelling& spellingOf(Action action) {
    return *std::ranges::find(spellings, action, &Spelling::action);
}

/// Cuts the first word off the line.
std::string_view takeWord(std::string_view& line) {
    const auto begin = std::min(line.find_first_not_of(' '), line.size());
    const auto end = std::min(line.find(' ', begin), line.size());
    const auto word = line.substr(begin, end - begin);
    line.remove_prefix(end);
    return word;
}

std::optional<std::int64_t> numberFrom(std::string_view word, Words words) {
    if (!words.empty()) {
        const auto found = std::ranges::find(words, word);
        return found == words.end() ? std::nullopt : std::optional<std::int64_t>(found - words.begin());
    }
    std::int64_t number = 0;
    const auto* const end = word.data() + word.size();
    const auto result = std::from_chars(word.data(), end, number);
    return result.ec == std::errc() && result.ptr == end ? std::optional(number) : std::nullopt;
}

std::optional<Step> parsedStep(std::string_view line) {
    const auto name = takeWord(line);
    const auto* const spelling = std::ranges::find(spellings, name, &Spelling::name);
    if (spelling == spellings.end()) {
        return std::nullopt;
    }
    Step step{.action = spelling->action};
    for (std::size_t index = 0; index < spelling->numberCount; ++index) {
        const auto number = numberFrom(takeWord(line), spelling->words.at(index));
        if (!number) {
            return std::nullopt;
        }
        step.numbers.at(index) = *number;
    }
    if (spelling->hasText) {
        const auto begin = line.find('"');
        const auto end = line.rfind('"');
        if (begin == std::string_view::npos || end == begin) {
            return std::nullopt;
        }
        step.text = line.substr(begin + 1, end - begin - 1);
        line.remove_prefix(end + 1);
    }
    return line.find_first_not_of(' ') == std::string_view::npos ? std::optional(step) : std::nullopt;
}

}  // namespace

std::string printed(const Step& step) {
    const Spelling& spelling = spellingOf(step.action);
    std::string line(spelling.name);
    for (std::size_t index = 0; index < spelling.numberCount; ++index) {
        const auto number = step.numbers.at(index);
        const Words words = spelling.words.at(index);
        line += words.empty() ? fmt::format(" {}", number)
                              : fmt::format(" {}", words[static_cast<std::size_t>(number) % words.size()]);
    }
    return spelling.hasText ? fmt::format("{} \"{}\"", line, step.text) : line;
}

std::string printed(const Script& script) {
    std::string lines;
    for (const Step& step : script) {
        lines += printed(step) + "\n";
    }
    return lines;
}

std::optional<Script> parsed(std::string_view text, std::string& error) {
    Script script;
    while (!text.empty()) {
        const auto end = std::min(text.find('\n'), text.size());
        const auto line = text.substr(0, end);
        text.remove_prefix(std::min(end + 1, text.size()));
        if (line.find_first_not_of(' ') == std::string_view::npos || line.front() == '#') {
            continue;
        }
        const auto step = parsedStep(line);
        if (!step) {
            error = line;
            return std::nullopt;
        }
        script.push_back(*step);
    }
    return script;
}

}  // namespace ferrowyn::simulation

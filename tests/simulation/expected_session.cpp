#include "tests/simulation/expected_session.h"

#include <algorithm>
#include <array>
#include <map>
#include <utility>

#include "tests/simulation/expected_list.h"

namespace ferrowyn::simulation {

namespace {

constexpr std::uint64_t shift = 0x20000;
constexpr std::uint64_t control = 0x40000;
constexpr std::uint64_t option = 0x80000;
constexpr std::uint64_t command = 0x100000;

constexpr char32_t capitalEAcute = 0xC9;
constexpr char32_t smallEAcute = 0xE9;

/// The titles and keys of the simulation have characters of one code point alone.
std::vector<char32_t> charactersOf(std::string_view text) {
    std::vector<char32_t> characters;
    for (const char unit : text) {
        const auto byte = static_cast<unsigned char>(unit);
        if ((byte & 0xC0U) == 0x80U) {
            characters.back() = (characters.back() << 6U) | (byte & 0x3FU);
        } else {
            characters.push_back(byte < 0x80 ? byte : byte < 0xE0 ? byte & 0x1FU : byte & 0x0FU);
        }
    }
    return characters;
}

bool isUpper(char32_t character) {
    return (character >= 'A' && character <= 'Z') || character == capitalEAcute;
}

bool isLower(char32_t character) {
    return (character >= 'a' && character <= 'z') || character == smallEAcute;
}

std::vector<char32_t> lowercased(std::vector<char32_t> characters) {
    for (char32_t& character : characters) {
        character = isUpper(character) ? character + 0x20 : character;
    }
    return characters;
}

bool separatesWords(char32_t character) {
    constexpr std::u32string_view separators = U" -_./:\u2014\u2013";
    return separators.find(character) != std::u32string_view::npos;
}

bool standsAt(const std::vector<char32_t>& query, const std::vector<char32_t>& text, std::size_t begin) {
    return begin + query.size() <= text.size() &&
           std::equal(query.begin(), query.end(), text.begin() + static_cast<std::ptrdiff_t>(begin));
}

std::int64_t bonus(const std::vector<char32_t>& query, const std::vector<char32_t>& text) {
    if (text == query) {
        return 1000;
    }
    if (standsAt(query, text, 0)) {
        return 400;
    }
    for (std::size_t at = 1; at < text.size(); ++at) {
        if (separatesWords(text[at - 1]) && standsAt(query, text, at)) {
            return 200;
        }
    }
    return 0;
}

std::string titleOf(const AppWindow& window) {
    const auto title = trimmed(window.title, " \t\n");
    return title.empty() ? window.appName : std::string(title);
}

std::optional<std::int64_t> scoreOf(std::string_view query, const AppWindow& window) {
    const auto title = titleOf(window);
    const auto byTitle = expectedMatch(query, title);
    const auto byName = expectedMatch(query, window.appName);
    const auto byBoth = expectedMatch(query, window.appName + " " + title);
    std::optional<std::int64_t> best;
    for (const auto& match : {byTitle, byName, byBoth}) {
        if (match && (!best || match->score > *best)) {
            best = match->score;
        }
    }
    return best && byTitle && byTitle->score == *best ? *best + 10 : best;
}

ExpectedRow plainRow(const AppWindow& window) {
    return {.window = window, .highlights = {}};
}

/// The sorted parts of the rows: those that fulfil the condition first.
template <typename Condition>
void putFirst(std::vector<AppWindow>& windows, Condition condition) {
    std::vector<AppWindow> others;
    std::vector<AppWindow> first;
    for (const AppWindow& window : windows) {
        (condition(window) ? first : others).push_back(window);
    }
    first.insert(first.end(), others.begin(), others.end());
    windows = first;
}

std::vector<ExpectedRow> groupedByApplication(const std::vector<ExpectedRow>& rows) {
    std::vector<ExpectedRow> grouped;
    std::vector<Pid> order;
    for (const ExpectedRow& row : rows) {
        if (std::ranges::find(order, row.window.pid) == order.end()) {
            order.push_back(row.window.pid);
        }
    }
    for (const Pid pid : order) {
        std::ranges::copy_if(rows, std::back_inserter(grouped),
                             [pid](const ExpectedRow& row) { return row.window.pid == pid; });
    }
    return grouped;
}

/// A session begins on the second row, or on the last when reversed; it passes over windows that lead back to the
/// dialog in use.
int firstSelection(const std::vector<ExpectedRow>& rows, bool reverse) {
    const int count = static_cast<int>(rows.size());
    if (count < 2) {
        return 0;
    }
    const auto& first = rows.front().window;
    const WindowId inUse = first.blockedBy ? first.blockedBy->id : first.id;
    std::vector<int> candidates;
    for (int index = 1; index < count; ++index) {
        candidates.push_back(reverse ? count - index : index);
    }
    for (const int index : candidates) {
        const auto& dialog = rows[static_cast<std::size_t>(index)].window.blockedBy;
        if (!dialog || dialog->id != inUse) {
            return index;
        }
    }
    return candidates.front();
}

}  // namespace

bool ExpectedSettings::isFavourite(const AppWindow& window) const {
    return window.bundleIdentifier && std::ranges::find(favourites, *window.bundleIdentifier) != favourites.end();
}

void ExpectedSettings::toggleFavourite(const AppWindow& window) {
    if (!window.bundleIdentifier) {
        return;
    }
    const auto found = std::ranges::find(favourites, *window.bundleIdentifier);
    if (found != favourites.end()) {
        favourites.erase(found);
    } else {
        favourites.push_back(*window.bundleIdentifier);
    }
}

std::optional<ExpectedMatch> expectedMatch(std::string_view query, std::string_view text) {
    const auto wanted = lowercased(charactersOf(query));
    const auto exact = charactersOf(text);
    const auto lower = lowercased(exact);
    ExpectedMatch match;
    if (wanted.empty()) {
        return match;
    }
    std::size_t next = 0;
    for (const char32_t character : wanted) {
        while (next < lower.size() && lower[next] != character) {
            ++next;
        }
        if (next == lower.size()) {
            return std::nullopt;
        }
        const auto at = static_cast<std::int64_t>(next);
        if (match.positions.empty()) {
            match.score += std::max<std::int64_t>(-2 * at, -30);
        } else {
            const std::int64_t skipped = at - match.positions.back() - 1;
            match.score += skipped == 0 ? 30 : -3 * skipped;
        }
        match.score += next == 0 || separatesWords(exact[next - 1]) ? 25 : 0;
        match.score += next > 0 && isUpper(exact[next]) && isLower(exact[next - 1]) ? 20 : 0;
        match.score += exact[next] == character ? 1 : 0;
        match.positions.push_back(static_cast<std::int32_t>(next));
        ++next;
    }
    match.score += bonus(wanted, lower) - static_cast<std::int64_t>(exact.size() / 8);
    return match;
}

std::u16string_view typedBy(const Key& key, std::uint64_t flags) {
    return (flags & shift) != 0 ? key.shifted : key.plain;
}

bool isTrigger(const Key& key, std::uint64_t flags, const TapFlags& tap) {
    const bool isHeld = (flags & tap.modifierFlag) == tap.modifierFlag;
    return isHeld && (key.name == "tab" || (key.name == "grave" && tap.modifierFlag == command));
}

ExpectedVerdict expectedKeyDown(const Key& key, std::uint64_t flags, const TapFlags& tap) {
    namespace c = ferrowyn::command;
    const bool hasShift = (flags & shift) != 0;
    const bool hasCommand = (flags & command) != 0;
    if (isTrigger(key, flags, tap)) {
        return {true, c::Invoke{hasShift}};
    }
    if (!tap.isVisible) {
        return {};
    }
    const std::map<std::string_view, SwitcherCommand> fixed{
        {"return", c::Confirm{}},          {"enter", c::Confirm{}},       {"escape", c::Cancel{}},
        {"home", c::MoveToEdge{true}},     {"end", c::MoveToEdge{false}}, {"page-up", c::MoveVertical{-4}},
        {"page-down", c::MoveVertical{4}}, {"left", c::Move{-1}},         {"right", c::Move{1}},
        {"up", c::MoveVertical{-1}},       {"down", c::MoveVertical{1}},  {"tab", c::Move{hasShift ? -1 : 1}},
    };
    if (const auto found = fixed.find(key.name); found != fixed.end()) {
        return {true, found->second};
    }
    if (key.name == "backspace") {
        const bool clears = (flags & (command | option)) != 0;
        return {true, clears ? SwitcherCommand(c::ClearQuery{}) : SwitcherCommand(c::DeleteBackward{})};
    }
    if (hasCommand && (key.name == "d" || key.name == "l")) {
        return {true, key.name == "d" ? SwitcherCommand(c::ToggleFavourite{}) : SwitcherCommand(c::ToggleLayout{})};
    }
    const bool isHeld = (flags & tap.modifierFlag) == tap.modifierFlag;
    if ((hasCommand || isHeld) && key.name.size() == 1 && key.name.front() >= '1' && key.name.front() <= '9') {
        return {true, c::SelectIndex{key.name.front() - '0'}};
    }
    const auto typed = typedBy(key, flags);
    if ((flags & control) != 0 || typed.empty() || typed.front() < 0x20 || typed.front() == 0x7F) {
        return {true, std::nullopt};
    }
    // The keyboard has no characters beyond two bytes.
    const auto unit = typed.front();
    return {true, c::InsertText{unit < 0x80 ? std::string(1, static_cast<char>(unit))
                                            : std::string{static_cast<char>(0xC0 | (unit >> 6)),
                                                          static_cast<char>(0x80 | (unit & 0x3F))}}};
}

ExpectedVerdict expectedFlagsChange(std::uint64_t flags, const TapFlags& tap) {
    const bool isHeld = (flags & tap.modifierFlag) == tap.modifierFlag;
    return {false, tap.isVisible && tap.isHoldMode && !isHeld
                       ? std::optional<SwitcherCommand>(ferrowyn::command::ModifierReleased{})
                       : std::nullopt};
}

void ExpectedSession::begin(const ExpectedSettings& settings, std::optional<Pid> frontmost) {
    query.clear();
    isPinned = false;
    isHoldMode = settings.confirmOnModifierRelease;
    frontmost_ = frontmost;
    frozen_.reset();
}

void ExpectedSession::complete(bool reverse, TimePoint now) {
    frozen_.emplace();
    for (const ExpectedRow& row : rows) {
        frozen_->push_back(row.window);
    }
    selection = firstSelection(rows, reverse);
    isVisible = true;
    lastCommand = now;
}

void ExpectedSession::end() {
    isVisible = false;
    query.clear();
    isPinned = false;
    frontmost_.reset();
    frozen_.reset();
}

void ExpectedSession::rebuild(const std::vector<AppWindow>& windows, const ExpectedSettings& settings) {
    const auto remembered = selected();
    rows = rowsFrom(windows, settings);
    selection = std::min(selection, std::max(static_cast<int>(rows.size()) - 1, 0));
    if (remembered) {
        select(remembered->id);
    }
}

std::vector<ExpectedRow> ExpectedSession::rowsFrom(const std::vector<AppWindow>& windows,
                                                   const ExpectedSettings& settings) const {
    std::vector<AppWindow> admitted;
    for (const AppWindow& window : windows) {
        if (window.isMinimized ? settings.includeMinimized : settings.includeOtherSpaces || window.isOnActiveSpace) {
            admitted.push_back(window);
        }
    }
    const auto wanted = trimmed(query, " \t");
    std::vector<ExpectedRow> result = !wanted.empty() ? matches(admitted, wanted)
                                      : frozen_       ? frozenRows(windows)
                                                      : liveRows(admitted, settings);
    if (settings.layout == SwitcherLayout::grouped) {
        result = groupedByApplication(result);
    }
    for (std::size_t index = 0; index < result.size(); ++index) {
        ExpectedRow& row = result[index];
        row.startsGroup = index == 0 || result[index - 1].window.pid != row.window.pid;
        row.groupSize = static_cast<int>(std::ranges::count_if(
            result, [&row](const ExpectedRow& other) { return other.window.pid == row.window.pid; }));
        row.isFavourite = settings.isFavourite(row.window);
    }
    return result;
}

std::vector<ExpectedRow> ExpectedSession::matches(const std::vector<AppWindow>& windows,
                                                  std::string_view wanted) const {
    std::vector<std::pair<std::int64_t, ExpectedRow>> scored;
    for (const AppWindow& window : windows) {
        if (const auto score = scoreOf(wanted, window)) {
            ExpectedRow row = plainRow(window);
            if (const auto inTitle = expectedMatch(wanted, titleOf(window))) {
                row.highlights = inTitle->positions;
            }
            scored.emplace_back(*score, row);
        }
    }
    std::ranges::stable_sort(scored, [](const auto& a, const auto& b) { return a.first > b.first; });
    std::vector<ExpectedRow> result;
    for (const auto& [score, row] : scored) {
        result.push_back(row);
    }
    return result;
}

std::vector<ExpectedRow> ExpectedSession::frozenRows(const std::vector<AppWindow>& windows) const {
    std::vector<ExpectedRow> result;
    for (const AppWindow& captured : *frozen_) {
        const auto current = std::ranges::find(windows, captured.id, &AppWindow::id);
        result.push_back(plainRow(current != windows.end() ? *current : captured));
    }
    return result;
}

std::vector<ExpectedRow> ExpectedSession::liveRows(std::vector<AppWindow> windows,
                                                   const ExpectedSettings& settings) const {
    if (settings.showActiveAppWindowsFirst && frontmost_) {
        putFirst(windows, [this](const AppWindow& window) { return window.pid == *frontmost_; });
    }
    if (settings.favouritesFirst) {
        putFirst(windows, [&settings](const AppWindow& window) { return settings.isFavourite(window); });
    }
    std::vector<ExpectedRow> result;
    std::ranges::transform(windows, std::back_inserter(result), plainRow);
    return result;
}

std::optional<AppWindow> ExpectedSession::selected() const {
    const bool isRow = selection >= 0 && static_cast<std::size_t>(selection) < rows.size();
    return isRow ? std::optional(rows[static_cast<std::size_t>(selection)].window) : std::nullopt;
}

void ExpectedSession::move(std::int64_t step) {
    const auto count = static_cast<std::int64_t>(rows.size());
    if (count > 0) {
        selection = static_cast<int>((((selection + step) % count) + count) % count);
    }
}

void ExpectedSession::select(WindowId id) {
    const auto found = std::ranges::find_if(rows, [id](const ExpectedRow& row) { return row.window.id == id; });
    if (found != rows.end()) {
        selection = static_cast<int>(found - rows.begin());
    }
}

void ExpectedSession::dropLastCharacter() {
    while (!query.empty() && (static_cast<unsigned char>(query.back()) & 0xC0U) == 0x80U) {
        query.pop_back();
    }
    if (!query.empty()) {
        query.pop_back();
    }
}

}  // namespace ferrowyn::simulation

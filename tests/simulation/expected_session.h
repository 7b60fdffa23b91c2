#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/app_window.h"
#include "core/geometry.h"
#include "core/switcher_command.h"
#include "core/switcher_options.h"
#include "platform/main_loop.h"
#include "tests/simulation/script.h"

namespace ferrowyn::simulation {

/// The settings and favourites that the program must have.
struct ExpectedSettings {
    SwitcherModifier modifier = SwitcherModifier::option;
    bool includeMinimized = true;
    bool includeOtherSpaces = true;
    bool showShortcutHints = true;
    bool confirmOnModifierRelease = true;
    int maximumVisibleRows = 9;
    SwitcherLayout layout = SwitcherLayout::list;
    bool showActiveAppWindowsFirst = true;
    bool favouritesFirst = true;
    bool automaticUpdateChecks = true;
    std::vector<std::string> favourites;

    friend bool operator==(const ExpectedSettings&, const ExpectedSettings&) = default;

    [[nodiscard]] bool isFavourite(const AppWindow& window) const;
    void toggleFavourite(const AppWindow& window);
};

struct ExpectedRow {
    AppWindow window;
    std::vector<std::int32_t> highlights;
    bool startsGroup = false;
    int groupSize = 0;
    bool isFavourite = false;
};

/// The score of a query in a text, and the positions of its characters; nothing when it does not match.
struct ExpectedMatch {
    std::int64_t score = 0;
    std::vector<std::int32_t> positions;
};
[[nodiscard]] std::optional<ExpectedMatch> expectedMatch(std::string_view query, std::string_view text);

/// What the tap must do with a key.
struct ExpectedVerdict {
    bool isSwallowed = false;
    std::optional<SwitcherCommand> command;
};
struct TapFlags {
    std::uint64_t modifierFlag = 0;
    bool isVisible = false;
    bool isHoldMode = false;
};
[[nodiscard]] ExpectedVerdict expectedKeyDown(const Key& key, std::uint64_t flags, const TapFlags& tap);
[[nodiscard]] ExpectedVerdict expectedFlagsChange(std::uint64_t flags, const TapFlags& tap);
[[nodiscard]] bool isTrigger(const Key& key, std::uint64_t flags, const TapFlags& tap);
/// What the key types with these flags.
[[nodiscard]] std::u16string_view typedBy(const Key& key, std::uint64_t flags);

/// The state that the panel must have, from the commands and the list alone.
class ExpectedSession {
public:
    static constexpr Seconds longestIdleTime{30.0};

    bool isVisible = false;
    bool isPinned = false;
    /// What the tap must know while the panel is shown.
    bool isHoldMode = false;
    int selection = 0;
    std::string query;
    std::vector<ExpectedRow> rows;
    TimePoint lastCommand{};

    /// Before the program opens a session: its first rows come during that.
    void begin(const ExpectedSettings& settings, std::optional<Pid> frontmost);
    /// After it: freezes the rows and chooses the first selection.
    void complete(bool reverse, TimePoint now);
    void end();
    void pin() {
        isPinned = true;
        isHoldMode = false;
    }
    void rebuild(const std::vector<AppWindow>& windows, const ExpectedSettings& settings);
    [[nodiscard]] std::vector<ExpectedRow> rowsFrom(const std::vector<AppWindow>& windows,
                                                    const ExpectedSettings& settings) const;
    [[nodiscard]] std::optional<AppWindow> selected() const;
    void move(std::int64_t step);
    void select(WindowId id);
    void dropLastCharacter();

private:
    [[nodiscard]] std::vector<ExpectedRow> matches(const std::vector<AppWindow>& windows,
                                                   std::string_view wanted) const;
    [[nodiscard]] std::vector<ExpectedRow> frozenRows(const std::vector<AppWindow>& windows) const;
    [[nodiscard]] std::vector<ExpectedRow> liveRows(std::vector<AppWindow> windows,
                                                    const ExpectedSettings& settings) const;

    std::optional<Pid> frontmost_;
    std::optional<std::vector<AppWindow>> frozen_;
};

}  // namespace ferrowyn::simulation

#include "core/switcher_row_builder.h"

#include <algorithm>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <utility>

#include "core/fuzzy_matcher.h"
#include "core/text.h"

namespace ferrowyn {

class SwitcherRowBuilder::Filter {
public:
    explicit Filter(const SessionSettings& settings)
        : includeMinimized_(settings.includeMinimized.get()), includeOtherSpaces_(settings.includeOtherSpaces.get()) {}

    [[nodiscard]] bool includes(const AppWindow& window) const {
        // A minimised window belongs to no Space, so only the setting for minimised windows hides it.
        return window.isMinimized ? includeMinimized_ : window.isOnActiveSpace || includeOtherSpaces_;
    }

private:
    bool includeMinimized_;
    bool includeOtherSpaces_;
};

void SwitcherRowBuilder::build(const Input& input, std::vector<Row>& rows) {
    entries_.clear();
    highlights_.clear();
    const std::string_view query = text::trimmingWhitespace(input.query);
    if (!query.empty()) {
        enterMatches(input, query);
    } else if (input.sessionWindows != nullptr) {
        enterSessionWindows(input);
    } else {
        enterLiveWindows(input);
    }
    if (settings_.layout.get() == SwitcherLayout::grouped) {
        groupByProcess();
    }
    writeRows(input.windows, rows);
}

void SwitcherRowBuilder::enterLiveWindows(const Input& input) {
    const Filter filter(settings_);
    for (const AppWindow& window : *input.windows) {
        if (filter.includes(window)) {
            entries_.push_back({.window = &window});
        }
    }
    if (settings_.showActiveAppWindowsFirst.get() && input.frontmostPID) {
        std::stable_partition(entries_.begin(), entries_.end(),
                              [&](const Entry& entry) { return entry.window->pid == *input.frontmostPID; });
    }
    // Last, so that favourites come before the active application's other windows.
    if (settings_.favouritesFirst.get()) {
        std::vector<const AppWindow*> windows;
        windows.reserve(entries_.size());
        for (const Entry& entry : entries_) {
            windows.push_back(entry.window);
        }
        entries_.clear();
        for (const AppWindow* window : favourites_.ordered(std::move(windows))) {
            entries_.push_back({.window = window});
        }
    }
}

void SwitcherRowBuilder::enterSessionWindows(const Input& input) {
    std::unordered_map<WindowId, const AppWindow*> currentById;
    currentById.reserve(input.windows->size());
    for (const AppWindow& window : *input.windows) {
        currentById.try_emplace(window.id, &window);
    }
    for (const SharedWindow& captured : *input.sessionWindows) {
        const auto current = currentById.find(captured->id);
        entries_.push_back(current == currentById.end() ? Entry{.window = &*captured, .remembered = &captured}
                                                        : Entry{.window = current->second});
    }
}

void SwitcherRowBuilder::enterMatches(const Input& input, std::string_view query) {
    const FuzzyMatcher::Query prepared(query);
    const Filter filter(settings_);
    entries_.reserve(input.windows->size());
    for (const AppWindow& window : *input.windows) {
        if (!filter.includes(window)) {
            continue;
        }
        if (const auto score = FuzzyMatcher::score(prepared, window, titleIndices_)) {
            entries_.push_back({.window = &window,
                                .score = *score,
                                .firstHighlight = highlights_.size(),
                                .highlightCount = titleIndices_.size()});
            highlights_.insert(highlights_.end(), titleIndices_.begin(), titleIndices_.end());
        }
    }
    // All windows come from one list, so their addresses tell their order there.
    std::sort(entries_.begin(), entries_.end(), [](const Entry& a, const Entry& b) {
        return a.score != b.score ? a.score > b.score : a.window < b.window;
    });
}

void SwitcherRowBuilder::groupByProcess() {
    std::unordered_map<Pid, std::vector<Entry>> groups;
    std::vector<Pid> order;
    for (const Entry& entry : entries_) {
        std::vector<Entry>& group = groups[entry.window->pid];
        if (group.empty()) {
            order.push_back(entry.window->pid);
        }
        group.push_back(entry);
    }
    entries_.clear();
    for (const Pid pid : order) {
        const std::vector<Entry>& group = groups[pid];
        entries_.insert(entries_.end(), group.begin(), group.end());
    }
}

void SwitcherRowBuilder::writeRows(const SharedWindow::List& windows, std::vector<Row>& rows) {
    const std::vector<std::string>& identifiers = favourites_.bundleIdentifiers().get();
    const std::unordered_set<std::string_view> favourites(identifiers.begin(), identifiers.end());
    std::unordered_map<Pid, int> groupSizes;

    rows.resize(entries_.size());
    const AppWindow* previous = nullptr;
    int* groupSize = nullptr;
    for (std::size_t i = 0; i < entries_.size(); ++i) {
        Entry& entry = entries_[i];
        const AppWindow& window = *entry.window;
        Row& row = rows[i];
        row.window = entry.remembered != nullptr ? *entry.remembered : SharedWindow(windows, window);
        const auto firstHighlight = highlights_.begin() + static_cast<std::ptrdiff_t>(entry.firstHighlight);
        row.highlightedTitleIndices.assign(firstHighlight,
                                           firstHighlight + static_cast<std::ptrdiff_t>(entry.highlightCount));
        row.startsGroup = previous == nullptr || window.pid != previous->pid;
        row.isFavourite =
            !favourites.empty() && window.bundleIdentifier && favourites.contains(*window.bundleIdentifier);
        if (row.startsGroup) {
            groupSize = &groupSizes[window.pid];
        }
        ++*groupSize;
        entry.groupSize = groupSize;
        previous = &window;
    }
    for (std::size_t i = 0; i < rows.size(); ++i) {
        rows[i].groupSize = *entries_[i].groupSize;
    }
}

}  // namespace ferrowyn

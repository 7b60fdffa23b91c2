#include "core/switcher_view_model.h"

#include <algorithm>
#include <utility>

#include "core/switcher_row_builder.h"
#include "core/text.h"

namespace ferrowyn {

namespace {

/// A session begins on the second row: the window that was used before the current one. Rows whose windows are blocked
/// by the dialog in use are skipped, because choosing one would change nothing; the user can still select them.
int firstSelection(const std::vector<SwitcherViewModel::Row>& rows, bool reverse) {
    const int count = static_cast<int>(rows.size());
    if (count == 0) {
        return 0;
    }
    const WindowId inUse = rows.front().window->inputWindowId();
    const auto leadsBack = [&](int index) {
        const auto& dialog = rows[static_cast<std::size_t>(index)].window->blockedBy;
        return dialog && dialog->id == inUse;
    };
    const int usual = reverse ? count - 1 : std::min(count, 2) - 1;
    for (int index = usual; index > 0 && index < count; index += reverse ? -1 : 1) {
        if (!leadsBack(index)) {
            return index;
        }
    }
    return usual;
}

}  // namespace

SwitcherViewModel::SwitcherViewModel(SessionSettings settings, IconProvider& iconProvider,
                                     const FavouriteApplications& favourites, FrontmostPid frontmostPID, PostTask post)
    : settings_(settings),
      iconProvider_(iconProvider),
      favourites_(favourites),
      frontmostPID_(std::move(frontmostPID)),
      rowBuilder_(std::make_unique<SwitcherRowBuilder>(settings_, favourites_)),
      rebuild_(post, [this] { rebuildRows(true); }),
      textPreparation_(std::move(post)) {}

SwitcherViewModel::~SwitcherViewModel() = default;

void SwitcherViewModel::bind(const Published<std::vector<AppWindow>>& windows,
                             const Published<AccessibilityStatus>& status) {
    cancellables_.push_back(windows.subscribe([this](const std::vector<AppWindow>& list) {
        allWindows_ = std::make_shared<const std::vector<AppWindow>>(list);
        rebuildRows(true);
        textPreparation_.start(allWindows_);
    }));
    cancellables_.push_back(status.subscribe([this](const AccessibilityStatus& current) {
        isAccessibilityTrusted.set(current == AccessibilityStatus::trusted);
    }));
    const auto rebuildOnChange = [this](const auto& setting) {
        cancellables_.push_back(setting.subscribeToChanges([this](const auto&) { rebuild_.request(); }));
    };
    rebuildOnChange(settings_.includeMinimized);
    rebuildOnChange(settings_.includeOtherSpaces);
    rebuildOnChange(settings_.showActiveAppWindowsFirst);
    rebuildOnChange(settings_.favouritesFirst);
    rebuildOnChange(settings_.layout);
    rebuildOnChange(favourites_.bundleIdentifiers());
}

void SwitcherViewModel::beginSession(bool reverse) {
    query.set({});
    isPinned.set(false);
    sessionFrontmostPID_ = frontmostPID_();
    sessionWindows_.reset();
    rebuildRows(false);
    std::vector<SharedWindow> frozen;
    frozen.reserve(rows.get().size());
    for (const Row& row : rows.get()) {
        frozen.push_back(row.window);
    }
    sessionWindows_ = std::move(frozen);
    sessionToken.set(sessionToken.get() + 1);
    selectedIndex.set(firstSelection(rows.get(), reverse));
}

void SwitcherViewModel::endSession() {
    query.set({});
    isPinned.set(false);
    sessionFrontmostPID_.reset();
    sessionWindows_.reset();
}

std::optional<AppWindow> SwitcherViewModel::selectedWindow() const {
    const int index = selectedIndex.get();
    if (index < 0 || index >= rowCount()) {
        return std::nullopt;
    }
    return rows.get()[static_cast<std::size_t>(index)].window;
}

std::optional<WindowId> SwitcherViewModel::selectedWindowId() const {
    const int index = selectedIndex.get();
    if (index < 0 || index >= rowCount()) {
        return std::nullopt;
    }
    return rows.get()[static_cast<std::size_t>(index)].window->id;
}

void SwitcherViewModel::move(int step) {
    moveBy(step);
}

void SwitcherViewModel::moveVertical(int step) {
    moveBy(static_cast<std::int64_t>(step) * columns(settings_.layout.get()));
}

void SwitcherViewModel::moveBy(std::int64_t step) {
    const std::int64_t count = rowCount();
    if (count == 0) {
        return;
    }
    const std::int64_t remainder = (selectedIndex.get() + step) % count;
    selectedIndex.set(static_cast<int>((remainder + count) % count));
}

void SwitcherViewModel::moveToEdge(bool first) {
    if (rowCount() > 0) {
        selectedIndex.set(first ? 0 : rowCount() - 1);
    }
}

bool SwitcherViewModel::selectIndex(int ordinal) {
    if (ordinal < 1 || ordinal > rowCount()) {
        return false;
    }
    selectedIndex.set(ordinal - 1);
    return true;
}

void SwitcherViewModel::select(WindowId id) {
    const std::vector<Row>& current = rows.get();
    const auto found =
        std::find_if(current.begin(), current.end(), [&](const Row& row) { return row.window->id == id; });
    if (found != current.end()) {
        selectedIndex.set(static_cast<int>(found - current.begin()));
    }
}

void SwitcherViewModel::insertText(std::string_view text) {
    query.set(query.get() + std::string(text));
    isPinned.set(true);
    rebuildRows(false);
    selectedIndex.set(0);
}

void SwitcherViewModel::deleteBackward() {
    if (query.get().empty()) {
        return;
    }
    std::string shortened = query.get();
    text::removeLastCharacter(shortened);
    query.set(std::move(shortened));
    rebuildRows(false);
    selectedIndex.set(0);
}

void SwitcherViewModel::clearQuery() {
    if (query.get().empty()) {
        return;
    }
    query.set({});
    rebuildRows(false);
    selectedIndex.set(0);
}

void SwitcherViewModel::rebuildRows(bool preservingSelection) {
    const std::optional<WindowId> remembered = preservingSelection ? selectedWindowId() : std::nullopt;
    rowBuilder_->build({.windows = allWindows_,
                        .query = query.get(),
                        .frontmostPID = sessionFrontmostPID_,
                        .sessionWindows = sessionWindows_ ? &*sessionWindows_ : nullptr},
                       retiredRows_);
    rows.exchange(retiredRows_);

    const std::vector<Row>& rebuilt = rows.get();
    if (remembered) {
        const auto found =
            std::find_if(rebuilt.begin(), rebuilt.end(), [&](const Row& row) { return row.window->id == *remembered; });
        if (found != rebuilt.end()) {
            selectedIndex.set(static_cast<int>(found - rebuilt.begin()));
            return;
        }
    }
    selectedIndex.set(std::min(selectedIndex.get(), std::max(rowCount() - 1, 0)));
}

int SwitcherViewModel::groupCount() const {
    const std::vector<Row>& current = rows.get();
    return static_cast<int>(
        std::count_if(current.begin(), current.end(), [](const Row& row) { return row.startsGroup; }));
}

SwitcherViewModel::Preview SwitcherViewModel::previewSession(bool reverse) const {
    if (isInSession()) {
        return {rows.get(), selectedIndex.get()};
    }
    Preview preview;
    SwitcherRowBuilder(settings_, favourites_)
        .build({.windows = allWindows_, .query = {}, .frontmostPID = frontmostPID_(), .sessionWindows = nullptr},
               preview.rows);
    preview.selectedIndex = firstSelection(preview.rows, reverse);
    return preview;
}

}  // namespace ferrowyn

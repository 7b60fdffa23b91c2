#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/app_window.h"
#include "core/fuzzy_matcher.h"
#include "core/posted_work.h"
#include "core/published.h"
#include "core/switcher_options.h"
#include "core/window_presentation.h"

namespace ferrowyn {

class IconProvider;
class SwitcherRowBuilder;

/// Everything the panel shows during one switching session: rows, selection, query, and whether it is pinned open.
/// One instance for the program's life, owned by the switcher controller. Main thread.
class SwitcherViewModel {
public:
    /// One displayed row.
    struct Row {
        SharedWindow window;
        /// Character positions in the window's display title that matched the query; empty without a query.
        std::vector<std::int32_t> highlightedTitleIndices;
        /// True for the first row and wherever the process differs from the previous row's.
        bool startsGroup = false;
        /// How many rows of the whole list belong to the same process.
        int groupSize = 0;
        bool isFavourite = false;
        friend bool operator==(const Row&, const Row&) = default;
    };

    using FrontmostPid = std::function<std::optional<Pid>()>;

    /// The icon provider is only passed on to the views. All references outlive the view model.
    SwitcherViewModel(SessionSettings settings, IconProvider& iconProvider, const FavouriteApplications& favourites,
                      FrontmostPid frontmostPID, PostTask post);
    SwitcherViewModel(const SwitcherViewModel&) = delete;
    SwitcherViewModel& operator=(const SwitcherViewModel&) = delete;
    ~SwitcherViewModel();

    /// Follows the window list, the trust status and the settings. Called once. The sources and this object may be
    /// destroyed in any order.
    void bind(const Published<std::vector<AppWindow>>& windows, const Published<AccessibilityStatus>& status);

    void beginSession(bool reverse);
    void endSession();
    [[nodiscard]] bool isInSession() const { return sessionWindows_.has_value(); }

    [[nodiscard]] std::optional<AppWindow> selectedWindow() const;
    void move(int step);
    void moveVertical(int step);
    void moveToEdge(bool first);
    /// False, and nothing changes, when there is no row with this ordinal (counted from 1).
    [[nodiscard]] bool selectIndex(int ordinal);
    /// Selects the first row of this window; nothing changes when there is none.
    void select(WindowId id);
    void insertText(std::string_view text);
    void deleteBackward();
    void clearQuery();
    void rebuildRows(bool preservingSelection);

    /// The number of rows that start a group.
    [[nodiscard]] int groupCount() const;

    /// The rows and the selection with which a session would begin now, for drawing its first frame ahead of the key
    /// press. Changes nothing. During a session: the current rows and selection.
    struct Preview {
        std::vector<Row> rows;
        int selectedIndex = 0;
    };
    [[nodiscard]] Preview previewSession(bool reverse) const;

    Published<std::vector<Row>> rows;
    Published<int> selectedIndex{0};
    /// Exactly as typed. UTF-8.
    Published<std::string> query;
    Published<bool> isPinned{false};
    Published<bool> isAccessibilityTrusted{false};
    /// Goes up by one at every session start.
    Published<int> sessionToken{0};

    [[nodiscard]] IconProvider& iconProvider() const { return iconProvider_; }
    [[nodiscard]] const FavouriteApplications& favourites() const { return favourites_; }
    [[nodiscard]] const SessionSettings& settings() const { return settings_; }

private:
    void moveBy(std::int64_t step);
    [[nodiscard]] int rowCount() const { return static_cast<int>(rows.get().size()); }
    [[nodiscard]] std::optional<WindowId> selectedWindowId() const;

    SessionSettings settings_;
    IconProvider& iconProvider_;
    const FavouriteApplications& favourites_;
    FrontmostPid frontmostPID_;
    std::unique_ptr<SwitcherRowBuilder> rowBuilder_;
    /// The previously published rows. The next rows reuse their memory.
    std::vector<Row> retiredRows_;

    /// Shared with the rows. Never null.
    SharedWindow::List allWindows_ = std::make_shared<const std::vector<AppWindow>>();
    std::optional<Pid> sessionFrontmostPID_;
    std::optional<std::vector<SharedWindow>> sessionWindows_;
    /// Rebuilds the rows in a later turn of the loop, after the other subscribers of a changed setting were called.
    CoalescedTask rebuild_;
    TextPreparation textPreparation_;
    std::vector<Subscription> cancellables_;
};

}  // namespace ferrowyn

#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include "core/app_window.h"
#include "core/switcher_options.h"
#include "core/switcher_view_model.h"
#include "core/window_presentation.h"

namespace ferrowyn {

/// Turns the window list into the rows of a session: filtered, ordered or ranked by the query, grouped. Owned by the
/// view model. Main thread.
class SwitcherRowBuilder {
public:
    using Row = SwitcherViewModel::Row;

    struct Input {
        /// Most recently used first.
        const SharedWindow::List& windows;
        /// As typed; blanks around it are ignored.
        std::string_view query;
        /// The application whose windows come first when the settings ask for that.
        std::optional<Pid> frontmostPID;
        /// The order to keep while there is no query; null outside a session.
        const std::vector<SharedWindow>* sessionWindows = nullptr;
    };

    SwitcherRowBuilder(const SessionSettings& settings, const FavouriteApplications& favourites)
        : settings_(settings), favourites_(favourites) {}

    /// Replaces the content of `rows` and reuses its memory.
    void build(const Input& input, std::vector<Row>& rows);

private:
    /// A row before it is written.
    struct Entry {
        const AppWindow* window = nullptr;
        /// The same window when only the session still has it; null when the list has it.
        const SharedWindow* remembered = nullptr;
        std::int64_t score = 0;
        /// The start of its highlights in `highlights_`.
        std::size_t firstHighlight = 0;
        std::size_t highlightCount = 0;
        /// The number of rows of this process, shared by those rows. Complete when all rows have been counted.
        const int* groupSize = nullptr;
    };

    /// Which windows the settings admit. Reads the settings once for all windows.
    class Filter;

    void enterLiveWindows(const Input& input);
    void enterSessionWindows(const Input& input);
    void enterMatches(const Input& input, std::string_view query);
    void groupByProcess();
    void writeRows(const SharedWindow::List& windows, std::vector<Row>& rows);

    const SessionSettings& settings_;
    const FavouriteApplications& favourites_;
    std::vector<Entry> entries_;
    std::vector<std::int32_t> highlights_;
    std::vector<std::int32_t> titleIndices_;
};

}  // namespace ferrowyn

#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "tests/core/session_doubles.h"

namespace ferrowyn {

/// A bound view model with everything it listens to.
class SwitcherViewModelFixture : public testing::Test {
protected:
    SwitcherViewModelFixture() { model->bind(windows, status); }

    /// `count` windows with the ids 1 to `count`, each of another application.
    void open(int count) {
        std::vector<AppWindow> list;
        for (int i = 1; i <= count; ++i) {
            list.push_back(
                testWindow(static_cast<WindowId>(i), "Title " + std::to_string(i), "App" + std::to_string(i), 100 + i));
        }
        windows.set(list);
    }

    [[nodiscard]] std::vector<WindowId> ids() const {
        std::vector<WindowId> result;
        for (const auto& row : model->rows.get()) {
            result.push_back(row.window->id);
        }
        return result;
    }
    [[nodiscard]] const SwitcherViewModel::Row& row(std::size_t index) const { return model->rows.get().at(index); }
    [[nodiscard]] int selected() const { return model->selectedIndex.get(); }

    Published<std::vector<AppWindow>> windows;
    Published<AccessibilityStatus> status{AccessibilityStatus::trusted};
    SettingsDouble settings;
    FavouritesDouble favourites;
    IconProvider icons;
    TaskQueue tasks;
    std::optional<Pid> frontmost;
    std::unique_ptr<SwitcherViewModel> model = std::make_unique<SwitcherViewModel>(
        settings.references(), icons, favourites, [this] { return frontmost; }, tasks.post());
};

}  // namespace ferrowyn

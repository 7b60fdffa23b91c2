#pragma once

#include <algorithm>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "core/app_window.h"
#include "core/switcher_options.h"
#include "core/switcher_view_model.h"
#include "core/window_presentation.h"

namespace ferrowyn {

/// An ordinary window on the active Space; tests change what they are about.
inline AppWindow testWindow(WindowId id, std::string title, std::string appName = "App", Pid pid = 100) {
    AppWindow window;
    window.id = id;
    window.pid = pid;
    window.bundleIdentifier = "org.example." + appName;
    window.appName = std::move(appName);
    window.title = std::move(title);
    window.isOnActiveSpace = true;
    window.frame = {10, 20, 640, 480};
    window.zOrder = id;
    return window;
}

/// The view model only hands the icon provider on, so that here nothing needs to be behind the name.
class IconProvider {};

/// Favourites that live as long as the test.
class FavouritesDouble final : public FavouriteApplications {
public:
    [[nodiscard]] const Published<std::vector<std::string>>& bundleIdentifiers() const override { return identifiers; }
    [[nodiscard]] std::vector<const AppWindow*> ordered(std::vector<const AppWindow*> windows) const override {
        std::stable_partition(windows.begin(), windows.end(), [&](const AppWindow* window) {
            return std::ranges::find(identifiers.get(), window->bundleIdentifier) != identifiers.get().end();
        });
        return windows;
    }

    Published<std::vector<std::string>> identifiers;
};

/// The settings as they are when the program first runs.
struct SettingsDouble {
    Published<bool> includeMinimized{true};
    Published<bool> includeOtherSpaces{true};
    Published<bool> showActiveAppWindowsFirst{false};
    Published<bool> favouritesFirst{true};
    Published<SwitcherLayout> layout{SwitcherLayout::list};

    [[nodiscard]] SessionSettings references() const {
        return {includeMinimized, includeOtherSpaces, showActiveAppWindowsFirst, favouritesFirst, layout};
    }
};

/// Runs posted tasks when the test says so.
class TaskQueue {
public:
    [[nodiscard]] PostTask post() {
        return [this](std::function<void()> task) { tasks_.push_back(std::move(task)); };
    }
    [[nodiscard]] std::size_t size() const { return tasks_.size(); }
    void run() {
        for (const auto& task : std::exchange(tasks_, {})) {
            task();
        }
    }

private:
    std::vector<std::function<void()>> tasks_;
};

}  // namespace ferrowyn

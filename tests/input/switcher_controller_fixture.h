#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "input/hot_key_monitor.h"
#include "input/switcher_controller.h"
#include "input/switcher_panel.h"
#include "input/window_activator.h"
#include "inventory/window_index.h"
#include "platform/main_loop.h"
#include "platform/platform.h"
#include "platform/screens.h"
#include "platform/simulated/simulated_desktop.h"
#include "platform/user_defaults.h"
#include "services/accessibility_authorizer.h"
#include "services/favourites_store.h"
#include "services/icon_provider.h"
#include "services/preferences.h"
#include "tests/input/panel_doubles.h"
#include "tests/input/print_log_line.h"
#include "tests/input/tap_doubles.h"

namespace ferrowyn {

/// Five windows, 1 to 5 in the order of their use, on the first screen; 1, 2 and 3 are the editor's.
class SwitcherControllerTest : public ::testing::Test {
protected:
    using LogLine = SimulatedDesktop::LogLine;
    static constexpr Pid editor = 100;
    static constexpr Pid browser = 200;

    SwitcherControllerTest()
        : spy(desktop.platform().panel), platform(replacedIn(desktop.platform(), {.panel = &spy})) {
        desktop.launch({.pid = editor, .bundleIdentifier = "org.editor", .localizedName = "Editor"});
        desktop.launch({.pid = browser, .bundleIdentifier = "org.browser", .localizedName = "Browser"});
        for (const WindowId id : {5U, 4U, 3U, 2U, 1U}) {
            desktop.openWindow({.id = id, .pid = id > 3 ? browser : editor, .title = "Window " + std::to_string(id)});
        }
        desktop.setFrontmost(editor);
        desktop.movePointer({700, 400});
        preferences.showShortcutHints.set(false);
        auto viewModel = std::make_unique<SwitcherViewModel>(
            preferences.sessionSettings(), iconProvider, favourites, [this] { return desktop.frontmostPid(); },
            [this](std::function<void()> task) { platform.mainLoop.post(std::move(task)); });
        viewModel->bind(windowIndex.windows(), authorizer.status());
        controller.emplace(platform,
                           SwitcherController::Parts{.panel = std::make_unique<SwitcherPanel>(spy),
                                                     .viewModel = std::move(viewModel),
                                                     .activator = std::make_unique<WindowActivator>(platform),
                                                     .preferences = preferences,
                                                     .favourites = favourites,
                                                     .windowIndex = windowIndex,
                                                     .authorizer = authorizer,
                                                     .hotKeyMonitor = monitor},
                           stubContentFactory(content));
        setUpCalls = desktop.panel().calls;
        windowIndex.start();
        desktop.settle();
        // The observers' own notifications are history.
        desktop.advance(Seconds(1));
        forgetLog();
        forgetCalls();
    }

    void forgetLog() { static_cast<void>(desktop.takeLog()); }
    void forgetCalls() { static_cast<void>(desktop.takeControlCalls()); }
    SwitcherViewModel& viewModel() { return controller->viewModel(); }
    int selection() { return viewModel().selectedIndex.get(); }
    std::vector<WindowId> shownWindows() {
        std::vector<WindowId> ids;
        for (const auto& row : viewModel().rows.get()) {
            ids.push_back(row.window->id);
        }
        return ids;
    }
    AppWindow rowWindow(std::size_t row) { return viewModel().rows.get().at(row).window; }
    TapState::Snapshot tapSnapshot() { return monitor.state().snapshot(); }
    /// A tap that is told what the controller passes on.
    RecordingTap* record() {
        recordingTap.emplace(monitor.state());
        monitor.state().setTapPort(&*recordingTap);
        return &*recordingTap;
    }
    void closeAllWindows() {
        for (const WindowId id : {1U, 2U, 3U, 4U, 5U}) {
            desktop.closeWindow(id);
        }
        desktop.advance(Seconds(1));
    }

    SimulatedDesktop desktop;
    SpyPanel spy;
    Platform platform;
    Preferences preferences{platform.userDefaults};
    AccessibilityAuthorizer authorizer{platform};
    IconProvider iconProvider{platform.icons, platform.workspace};
    WindowIndex windowIndex{platform};
    std::optional<RecordingTap> recordingTap;
    HotKeyMonitor monitor{platform, SwitcherModifier::option};
    FavouritesStore favourites{platform.userDefaults, platform.workspace};
    SwitcherContentCallbacks content;
    std::optional<SwitcherController> controller;
    std::vector<std::string> setUpCalls;
};

}  // namespace ferrowyn

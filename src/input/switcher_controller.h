#pragma once

#include <memory>
#include <optional>
#include <vector>

#include "core/app_window.h"
#include "core/geometry.h"
#include "core/posted_work.h"
#include "core/published.h"
#include "core/switcher_command.h"
#include "core/switcher_view_model.h"
#include "input/panel_geometry.h"
#include "input/session_preparation.h"
#include "input/switcher_panel.h"

namespace ferrowyn {

class AccessibilityAuthorizer;
class FavouritesStore;
class HotKeyMonitor;
class Log;
class MainLoop;
class Pointer;
class Preferences;
class Screens;
class WindowActivator;
class WindowIndex;
struct Platform;

/// Ignores hovers until the pointer has moved a little since the last key, so that rows that move under a resting
/// pointer do not change the selection. A plain value.
struct PointerActivityGate {
    /// The pointer must get farther than this many points from the anchor before it counts again.
    static constexpr double activityDistance = 3.0;

    /// Where the pointer was at the last key; absent while the pointer is live.
    std::optional<Point> anchor;

    /// Called at each key.
    void arm(const Point& pointer) { anchor = pointer; }
    /// Whether a hover with the pointer at this place counts; the first that does makes the pointer live.
    [[nodiscard]] bool admitsHover(const Point& pointer);
};

/// Ends a session that no command has reached for half a minute: longer than a user needs, it only guards against
/// a modifier release that got lost. Owned by the controller. Main thread.
class SessionWatchdog {
public:
    static constexpr Seconds interval{30.0};

    SessionWatchdog(MainLoop& mainLoop, std::function<void()> onIdle)
        : mainLoop_(mainLoop), onIdle_(std::move(onIdle)) {}

    /// Begins to wait, anew if it waits already.
    void restart() { timer_ = mainLoop_.after(interval, onIdle_); }
    void stop() { timer_.reset(); }

private:
    MainLoop& mainLoop_;
    std::function<void()> onIdle_;
    Subscription timer_;
};

/// Runs one switching session at a time: opens the panel, carries out the commands of the keyboard and of the panel's
/// content, tells the tap what is on the screen, and hands the chosen window to the activator. Main thread.
class SwitcherController {
public:
    /// What the controller is made of and what it works with. The referenced services outlive it.
    struct Parts {
        std::unique_ptr<SwitcherPanel> panel;
        /// Bound to its sources already.
        std::unique_ptr<SwitcherViewModel> viewModel;
        std::unique_ptr<WindowActivator> activator;
        Preferences& preferences;
        FavouritesStore& favourites;
        WindowIndex& windowIndex;
        AccessibilityAuthorizer& authorizer;
        HotKeyMonitor& hotKeyMonitor;
    };

    SwitcherController(const Platform& platform, Parts parts, const SwitcherContentFactory& makeContent);
    ~SwitcherController();
    SwitcherController(const SwitcherController&) = delete;
    SwitcherController& operator=(const SwitcherController&) = delete;

    void handle(const SwitcherCommand& command);
    /// Opens a session.
    void show(bool reverse);
    /// Opens a session that stays open, with the first row selected.
    void showFromMenu();
    /// Closes the panel and ends the session; harmless when nothing is shown.
    void dismiss();
    /// Closes the panel and switches to the selected window, if there is one.
    void confirm();

    [[nodiscard]] bool isVisible() const { return isVisible_; }
    [[nodiscard]] SwitcherViewModel& viewModel() { return *viewModel_; }
    [[nodiscard]] WindowActivator& activator() { return *activator_; }
    /// Where the activator's results go.
    void noteActivated(const AppWindow& window);

private:
    struct CommandHandler;

    void installContent(const SwitcherContentFactory& makeContent);
    void subscribe();
    void subscribeToShape();

    // What the panel's content reports.
    void activateClicked(const AppWindow& window);
    void hover(int index);
    void toggleFavouriteOf(const AppWindow& window);
    void requestPermissions();

    void cycleLayout();
    void toggleFavouriteOfSelection();
    /// Closes the panel, and switches to the window, if there is one.
    void close(const std::optional<AppWindow>& chosen);
    void armPointerGate();
    void endIdleSession();
    void setHoldMode(bool isPinned);

    [[nodiscard]] panel_geometry::Style style() const;
    [[nodiscard]] Size contentSize(int rowCount, int groupCount) const;
    [[nodiscard]] Size currentContentSize() const;
    [[nodiscard]] Rect visibleFrame() const;
    [[nodiscard]] panel_geometry::RowShape rowShape() const;
    void refit();
    void prepareNextSession();

    MainLoop& mainLoop_;
    Log& log_;
    Pointer& pointerDevice_;
    Screens& screens_;

    std::unique_ptr<SwitcherPanel> panel_;
    std::unique_ptr<SwitcherViewModel> viewModel_;
    Preferences& preferences_;
    FavouritesStore& favourites_;
    WindowIndex& windowIndex_;
    std::unique_ptr<WindowActivator> activator_;
    AccessibilityAuthorizer& authorizer_;
    HotKeyMonitor& hotKeyMonitor_;

    PointerActivityGate pointer_;
    bool isVisible_ = false;
    std::optional<panel_geometry::RowShape> lastShape_;
    CoalescedTask refit_;
    SessionWatchdog watchdog_;
    SessionPreparation preparation_;
    /// For the panel's content, which belongs to the platform's panel and outlives the controller.
    LifeToken life_;
    Subscription clickMonitor_;
    std::vector<Subscription> cancellables_;
};

}  // namespace ferrowyn

#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "core/app_window.h"
#include "core/switcher_options.h"
#include "platform/accessibility_observers.h"
#include "platform/keyboard_tap.h"
#include "platform/main_loop.h"
#include "platform/platform.h"
#include "platform/screens.h"
#include "platform/simulated/simulated_display.h"
#include "platform/simulated/simulated_keyboard_tap.h"
#include "platform/simulated/simulated_system.h"
#include "platform/simulated/simulated_window_model.h"
#include "platform/user_defaults.h"

namespace ferrowyn {

/// A deterministic desktop with a virtual clock: it implements the platform interfaces (`platform()`) and, separately,
/// this control interface, with which a test or the simulator plays the user, the applications and the system.
/// Everything happens in the calling thread, inside `advance` or one of the calls below.
/// The notifications of what the user and the applications do are delivered inside the call. Those of what the program
/// requests through `WindowControl` are delivered when the loop settles.
class SimulatedDesktop {
public:
    /// The program's own process.
    static constexpr Pid ownPid = 4242;

    SimulatedDesktop();
    ~SimulatedDesktop();
    SimulatedDesktop(const SimulatedDesktop&) = delete;
    SimulatedDesktop& operator=(const SimulatedDesktop&) = delete;

    [[nodiscard]] const Platform& platform() const;

    // --- the clock and the main loop ------------------------------------------------------------------------------
    /// Lets time pass: runs every task and timer that falls due, in order, each at its own moment.
    void advance(Seconds duration);
    /// Runs what is due now (posted tasks, finished background work) without letting time pass.
    void settle();
    /// Runs one thing that is due now, so that something can happen between two tasks. False when nothing is due.
    bool runOneTask();
    /// Lets time pass in which the main thread runs nothing.
    void stall(Seconds duration);
    [[nodiscard]] std::size_t postedTaskCount() const;
    [[nodiscard]] TimePoint now() const;
    [[nodiscard]] WallTime wallTime() const;
    /// Sets the calendar's clock; it is 2026-01-01 00:00 UTC at first.
    void setWallTime(WallTime time);
    /// The number of waiting timers, for tests that no timer is left.
    [[nodiscard]] std::size_t pendingTimerCount() const;

    // --- background work --------------------------------------------------------------------------------------------
    /// While held, background work waits. After the release it runs when the loop next settles. Not held at first.
    void holdBackgroundWork(bool isHeld);
    [[nodiscard]] std::size_t heldBackgroundWorkCount() const;
    /// Work that has not begun when the program ends is dropped.
    void dropBackgroundWork();

    // --- applications and windows -----------------------------------------------------------------------------------
    using AppSpec = SimulatedAppState;
    using WindowSpec = SimulatedWindowState;

    /// Launches the application, with the workspace notification unless `silently`.
    void launch(const AppSpec& app, bool silently = false);
    void terminate(Pid pid);
    /// Opens in front of all other windows, with the application's `windowCreated` unless `silently`.
    void openWindow(const WindowSpec& window, bool silently = false);
    void closeWindow(WindowId id, bool silently = false);
    /// Changes a window's description without a notification.
    void changeWindow(WindowId id, const std::function<void(WindowSpec&)>& change);
    void setTitle(WindowId id, std::string title);
    /// The user clicks the window: it comes to the front and its application becomes active, with notifications.
    void focusWindow(WindowId id);
    /// Changes the stacking order, front-most first, without a notification.
    void restack(const std::vector<WindowId>& frontToBack);
    /// Changes the frontmost application without a notification.
    void setFrontmost(std::optional<Pid> pid);
    /// Hides or shows the application, with the notifications of the workspace and the application.
    void setHidden(Pid pid, bool isHidden);
    [[nodiscard]] bool isHidden(Pid pid) const;
    [[nodiscard]] std::optional<Pid> frontmostPid() const;
    [[nodiscard]] std::optional<WindowId> focusedWindow(Pid pid) const;
    [[nodiscard]] const WindowSpec* window(WindowId id) const;
    [[nodiscard]] AXElementRef elementOf(WindowId id) const;
    /// A hung application answers no Accessibility request.
    void setHung(Pid pid, bool isHung);
    /// The application accepts every request to raise and focus, and does nothing.
    void setIgnoresActivation(Pid pid, bool ignores);
    /// No observer can be created for the application.
    void setUnobservable(Pid pid, bool isUnobservable);
    void setWindowServerAnswers(bool answers);
    void setHasWindowNumberLookup(bool hasLookup);
    void setSpaceChanged();
    void setScreenParametersChanged();
    /// The notifications that are registered for a window, or for an application, in the order of registration.
    [[nodiscard]] std::vector<AccessibilityNotification> windowNotifications(WindowId id) const;
    [[nodiscard]] std::vector<AccessibilityNotification> applicationNotifications(Pid pid) const;
    /// Delivers any notification by name to the application's observers, registered or not.
    void notify(Pid pid, AccessibilityNotification notification);
    /// Delivers a notification once to each observer that is detached or destroyed, as if it had been queued before.
    void notifyLate(Pid pid, AccessibilityNotification notification);
    [[nodiscard]] std::size_t liveObserverCount() const;
    /// Whether anybody follows the workspace, the screens, the pointer, trust, the icons or the program's activation.
    [[nodiscard]] bool isObserved() const;
    void setInstalledApplicationName(std::string bundleIdentifier, std::optional<std::string> name);

    /// Every request of `WindowControl` and `Workspace::open`, in order, as "activate 100", "open <url>", "raise 7",
    /// "raise 7 again" for a retry, "raise 7 restoring it" for a minimised window, "raise 8 above 7" for a dialog.
    std::vector<std::string> takeControlCalls();

    // --- trust and secure input
    // ---------------------------------------------------------------------------------------
    /// Trusted at first. Sends the system's change notification when `announced`.
    void setTrusted(bool isTrusted, bool announced = false);
    void announceTrustChange();
    [[nodiscard]] int trustPromptCount() const;
    void setSecureInput(bool isActive);
    /// Another program answers a press of the trigger.
    void loseTrigger();
    /// From now on the display server lacks what capturing the keyboard needs.
    void makeServerUnusable();
    void becomeActiveApplication();
    /// For tests: sets what the program reports about itself, and records the requests.
    [[nodiscard]] SimulatedApplication& application();
    [[nodiscard]] SimulatedHttpClient& httpClient();
    [[nodiscard]] SimulatedLoginItem& loginItem();

    // --- the keyboard ----------------------------------------------------------------------------------------------
    using Key = SimulatedKey;
    /// Each delivers one event to the enabled tap, in the calling thread, and returns whether the application in
    /// front got it. With no enabled tap it always does. The posted command runs when the loop settles.
    bool keyDown(const Key& key);
    bool keyUp(const Key& key);
    bool flagsChanged(std::uint64_t flags);
    void disableTapByTimeout();
    void disableTapByUserInput();
    /// Disables the tap without an event.
    void disableTapSilently();
    /// Enables the tap, as if before the main thread knew that it was disabled.
    void enableTapSilently();
    /// The tap gives up the session that was requested last, as one does that gets no answer in time.
    void giveUpTapRequest();
    /// The tap's decision about the last event that it got.
    [[nodiscard]] TapVerdict lastTapVerdict() const;
    [[nodiscard]] bool tapIsInstalled() const;
    [[nodiscard]] bool tapIsEnabled() const;
    /// How many taps were started so far.
    [[nodiscard]] int tapStartCount() const;
    /// Refuses to start a tap, with these words.
    void refuseKeyboardTap(std::string words);
    void allowKeyboardTap();
    /// Whether the tap was last told that a session is open.
    [[nodiscard]] bool tapSessionIsOpen() const;
    [[nodiscard]] std::optional<SwitcherModifier> tapTrigger() const;

    // --- screens, pointer, panel
    // --------------------------------------------------------------------------------------
    void setScreens(std::vector<Screen> screens, std::optional<std::size_t> mainIndex = 0);
    void movePointer(Point location);
    /// Moves the pointer without an event: `Pointer::location` keeps the old place until it is refreshed.
    void movePointerUnnoticed(Point location);
    void clickElsewhere();
    using PanelState = SimulatedPanelState;
    [[nodiscard]] const PanelState& panel() const;

    // --- icons, defaults, log
    // -------------------------------------------------------------------------------------------
    /// Files and processes have an icon unless these calls say otherwise.
    void setFileHasIcon(std::string path, bool hasIcon);
    void setProcessHasIcon(Pid pid, bool hasIcon);
    /// The loads since the last call: "file <path>", "process <pid>", "generic <name>".
    std::vector<std::string> takeIconLoads();
    [[nodiscard]] UserDefaults& userDefaults();
    /// While they fail, values are kept in memory only.
    void setStoreWritesFail(bool fail);
    /// The store forgets what was never written, as when the program ends.
    void forgetUnwrittenValues();
    /// Every value written to the store, in order, with its key.
    [[nodiscard]] const std::vector<std::pair<std::string, DefaultsValue>>& storedValues() const;

    using LogLine = SimulatedLogLine;
    std::vector<LogLine> takeLog();

private:
    class Implementation;
    std::unique_ptr<Implementation> implementation_;
};

}  // namespace ferrowyn

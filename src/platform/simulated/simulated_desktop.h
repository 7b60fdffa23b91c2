#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "core/app_window.h"
#include "core/switcher_options.h"
#include "platform/event_tap.h"
#include "platform/main_loop.h"
#include "platform/platform.h"
#include "platform/screens.h"
#include "platform/simulated/simulated_display.h"
#include "platform/simulated/simulated_event_taps.h"
#include "platform/simulated/simulated_system.h"
#include "platform/simulated/simulated_window_model.h"
#include "platform/user_defaults.h"

namespace ferrowyn {

/// A deterministic desktop with a virtual clock: it implements the platform interfaces (`platform()`) and, separately,
/// this control interface, with which a test or the simulator plays the user, the applications and the system. Nothing
/// happens but in the calling thread, inside `advance` or one of the calls below; only the tap thread is real. What the
/// user and the applications do is announced inside the call that does it; what the program asks of them through
/// `WindowControl` is announced when the loop settles.
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
    [[nodiscard]] TimePoint now() const;
    [[nodiscard]] WallTime wallTime() const;
    /// Sets the calendar's clock; it is 2026-01-01 00:00 UTC at first.
    void setWallTime(WallTime time);
    /// How many timers are waiting, for tests of what must not be left behind.
    [[nodiscard]] std::size_t pendingTimerCount() const;

    // --- background work --------------------------------------------------------------------------------------------
    /// While held, background work waits; released, it runs when the loop next settles. Not held at first.
    void holdBackgroundWork(bool isHeld);
    [[nodiscard]] std::size_t heldBackgroundWorkCount() const;

    // --- applications and windows -----------------------------------------------------------------------------------
    using AppSpec = SimulatedAppState;
    using WindowSpec = SimulatedWindowState;

    /// Launches with the workspace notification, unless `silently` (it was running before, or nobody was told).
    void launch(const AppSpec& app, bool silently = false);
    void terminate(Pid pid);
    /// Opens in front of all other windows, with the application's "AXWindowCreated" unless `silently`.
    void openWindow(const WindowSpec& window, bool silently = false);
    void closeWindow(WindowId id, bool silently = false);
    /// Changes a window's description in place, telling nobody.
    void changeWindow(WindowId id, const std::function<void(WindowSpec&)>& change);
    void setTitle(WindowId id, std::string title);
    /// The user clicks the window: it comes to the front, its application becomes active, and all are told.
    void focusWindow(WindowId id);
    /// Changes the stacking order, front-most first, telling nobody.
    void restack(const std::vector<WindowId>& frontToBack);
    /// Another application is in front from now on, and nobody is told.
    void setFrontmost(std::optional<Pid> pid);
    /// Told as the workspace and the application tell it.
    void setHidden(Pid pid, bool isHidden);
    [[nodiscard]] bool isHidden(Pid pid) const;
    [[nodiscard]] std::optional<Pid> frontmostPid() const;
    [[nodiscard]] std::optional<WindowId> focusedWindow(Pid pid) const;
    [[nodiscard]] const WindowSpec* window(WindowId id) const;
    [[nodiscard]] AXElementRef elementOf(WindowId id) const;
    /// A hung application answers no Accessibility request.
    void setHung(Pid pid, bool isHung);
    /// An application that accepts every request to raise and focus, and does nothing.
    void setIgnoresActivation(Pid pid, bool ignores);
    /// No observer can be created for it.
    void setUnobservable(Pid pid, bool isUnobservable);
    void setWindowServerAnswers(bool answers);
    void setHasWindowNumberLookup(bool hasLookup);
    void setSpaceChanged();
    void setScreenParametersChanged();
    /// The notifications registered with each application's observer: per window id, in registration order.
    [[nodiscard]] std::vector<std::string> windowNotifications(WindowId id) const;
    [[nodiscard]] std::vector<std::string> applicationNotifications(Pid pid) const;
    /// Delivers any notification by name to the application's observers, registered or not.
    void notify(Pid pid, std::string_view notification);
    /// Notifications queued before the observers went, delivered after it: once to each that is detached or destroyed.
    void notifyLate(Pid pid, std::string_view notification);
    [[nodiscard]] std::size_t liveObserverCount() const;
    void setInstalledApplicationName(std::string bundleIdentifier, std::optional<std::string> name);
    void setOpeningUrlsFails(bool fails);

    /// Every call of `WindowControl` and `Workspace::open`, in order, as "raise 7", "activate 100", "open <url>",
    /// "timeout 7 0.5", "focusedWindow 100 7", "unhide 100", "unminimize 7", "main 7", "focused 7", "frontmost 100".
    std::vector<std::string> takeControlCalls();

    // --- trust and secure input
    // ---------------------------------------------------------------------------------------
    /// Trusted at first. `announced`: with the system's change notification.
    void setTrusted(bool isTrusted, bool announced = false);
    void announceTrustChange();
    [[nodiscard]] int trustPromptCount() const;
    void setSecureInput(bool isActive);
    /// Another program answers a press of the trigger.
    void loseTrigger();
    /// The display server lacks what capturing the keyboard needs, from now on.
    void makeServerUnusable();
    void becomeActiveApplication();
    /// What the program says of itself, and what was asked of the application object.
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
    /// Disables it without telling.
    void disableTapSilently();
    /// Enables it before the main thread has heard that it was disabled.
    void enableTapSilently();
    /// What the tap said about the last event that it was asked about.
    [[nodiscard]] TapVerdict lastTapVerdict() const;
    [[nodiscard]] bool tapIsInstalled() const;
    [[nodiscard]] bool tapIsEnabled() const;
    [[nodiscard]] int tapCreationCount() const;
    void setTapCreationFails(bool fails);
    void setTapSourceFails(bool fails);
    void setTapThreadFails(bool fails);
    /// What the tap was told last.
    [[nodiscard]] bool tapSessionIsOpen() const;
    [[nodiscard]] std::optional<SwitcherModifier> tapTrigger() const;
    [[nodiscard]] std::string tapThreadName() const;

    // --- screens, pointer, panel
    // --------------------------------------------------------------------------------------
    void setScreens(std::vector<Screen> screens, std::optional<std::size_t> mainIndex = 0);
    void movePointer(Point location);
    /// As when no key or pointer event has told of it yet.
    void movePointerUnnoticed(Point location);
    void clickElsewhere();
    using PanelState = SimulatedPanelState;
    [[nodiscard]] const PanelState& panel() const;

    // --- icons, defaults, log
    // -------------------------------------------------------------------------------------------
    /// Files and processes have an icon until they are said to have none.
    void setFileHasIcon(std::string path, bool hasIcon);
    void setProcessHasIcon(Pid pid, bool hasIcon);
    /// "file <path>", "process <pid>", "generic <name>".
    std::vector<std::string> takeIconLoads();
    [[nodiscard]] UserDefaults& userDefaults();
    /// Every value written to the store, in order, with its key.
    [[nodiscard]] const std::vector<std::pair<std::string, DefaultsValue>>& storedValues() const;

    using LogLine = SimulatedLogLine;
    std::vector<LogLine> takeLog();

private:
    class Implementation;
    std::unique_ptr<Implementation> implementation_;
};

}  // namespace ferrowyn

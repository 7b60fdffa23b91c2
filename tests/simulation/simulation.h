#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "app/app_services.h"
#include "core/switcher_view_model.h"
#include "input/switcher_panel.h"
#include "platform/platform.h"
#include "platform/simulated/simulated_desktop.h"
#include "platform/simulated/simulated_display.h"
#include "tests/simulation/expected_list.h"
#include "tests/simulation/expected_session.h"
#include "tests/simulation/script.h"

namespace ferrowyn::simulation {

/// An invariant that does not hold any more.
struct Breach {
    /// Names the invariant, such as "list.order".
    std::string invariant;
    std::string detail;
};

/// The whole program on the simulated desktop. It carries out one step at a time, lets the expectations follow, and
/// checks every invariant after each step. The first breach is kept; nothing is carried out after it. One thread.
class Simulation {
public:
    Simulation();
    ~Simulation();
    Simulation(const Simulation&) = delete;
    Simulation& operator=(const Simulation&) = delete;

    void perform(const Step& step);
    /// Ends the program and checks that it leaves nothing behind.
    void finish();
    [[nodiscard]] const std::optional<Breach>& breach() const { return breach_; }
    /// How often the panel was opened.
    [[nodiscard]] std::int64_t sessionCount() const { return sessionCount_; }

    // What a player looks at before it chooses its next step.
    [[nodiscard]] bool isPanelVisible() const { return panel_->state().isVisible; }
    [[nodiscard]] int rowCount() const { return static_cast<int>(session_.rows.size()); }
    [[nodiscard]] const ExpectedSettings& settings() const { return settings_; }
    [[nodiscard]] std::vector<Pid> applications() const;
    [[nodiscard]] std::vector<WindowId> windows() const { return windows_; }
    [[nodiscard]] std::uint64_t heldModifiers() const { return flags_; }
    [[nodiscard]] const std::set<std::int64_t>& heldKeys() const { return heldKeys_; }

private:
    class InventorySpy;
    class BackgroundSpy;
    class Content;
    struct CommandFollower;

    struct Application {
        bool isAdmitted = false;
        bool isHung = false;
        bool ignoresActivation = false;
        bool isUnobservable = false;
    };
    /// What a key stands for, until it is delivered.
    struct Command {
        SwitcherCommand command;
        bool asksForSession = false;
    };
    struct Activation {
        AppWindow window;
        TimePoint deadline{};
        bool hasBegun = false;
        bool isConcluded = false;
        /// Something happened on the desktop meanwhile, so the outcome is open.
        bool isDisturbed = false;
        bool isApplicationRunning = false;
        /// The desktop carries out what it is asked.
        bool isObeyed = false;
        /// So does the application of a window that is blocked by another's dialog.
        bool canBeRestored = false;
    };
    enum class Disabling { byTimeout, byUserInput };
    struct Tap {
        std::deque<Disabling> posted;
        std::optional<TimePoint> disabledAt;
        Seconds patience{};
        /// Without trust it cannot be enabled again.
        bool hadTrust = true;
        int timeouts = 0;
        bool isCountCertain = true;
        std::optional<TimePoint> lastTimeout;
        bool isAbandoned = false;
        bool mayBeMissing = false;
    };

    // The program's life.
    void startProgram();
    void endProgram();
    void follow();
    void followTrust(AccessibilityStatus status);
    void followTap(bool isRunning);

    // Steps, by who does them.
    bool performAsUser(const Step& step);
    bool performOnLoop(const Step& step);
    bool performAsApplication(const Step& step);
    bool performAsSystem(const Step& step);
    void key(const Step& step);
    void changeFlags(std::uint64_t flags);
    void onPanel(const Step& step);
    void useWindow(WindowId id);
    void openFromMenu();
    void set(std::int64_t setting, std::int64_t value);
    void launch(const Step& step);
    void quit(Pid pid);
    void openWindow(const Step& step);
    void tell(WindowId id, AccessibilityNotification notification);
    void lie(WindowId id, std::int64_t kind, std::int64_t value);
    void storm(Pid pid, std::int64_t count);
    void disableTap(Action action);
    void giveUpRequest();
    void expectCommand(const std::optional<SwitcherCommand>& command, const TapFlags& tap);
    void setTrust(bool isTrusted, bool isAnnounced);

    // What the program does, as the expectations see it.
    void deliver(const SwitcherCommand& command, const std::function<void(const SwitcherCommand&)>& handle);
    void beginSession();
    void completeSession(bool reverse);
    void endSession();
    void choose();
    void requestActivation(const std::optional<AppWindow>& chosen);
    void noteActivated(const AppWindow& window);
    void noteTapDisabled();
    void noteTapFailed(HotKeyMonitor::Failure failure);
    void noteRows(const std::vector<SwitcherViewModel::Row>& rows);
    void notePassBegin();
    [[nodiscard]] std::unique_ptr<InventoryReading> noteReading();
    void noteRefresh();
    void noteFocusQuery(std::optional<WindowId> id);
    void noteRevalidation(const std::optional<std::vector<std::optional<WindowId>>>& order);
    void endIdleSession();
    void noteWrites();

    // The invariants.
    void fail(std::string_view invariant, std::string detail);
    void expect(bool holds, std::string_view invariant, std::string_view detail);
    void check();
    void checkPanel();
    void checkFrame();
    void checkSession();
    void checkList();
    void checkRefresh();
    void checkObservers();
    void checkActivation();
    void checkTap();
    void checkTrust();
    void checkTimers();
    void checkSettings();
    void compareRows(const std::vector<SwitcherViewModel::Row>& rows, const std::vector<ExpectedRow>& expected);
    [[nodiscard]] TapFlags tapFlags();
    [[nodiscard]] bool hasQueueRun() const { return desktop_.postedTaskCount() == 0; }
    [[nodiscard]] bool isTrusted() { return services_->authorizer().status().get() == AccessibilityStatus::trusted; }
    /// The program was told of a change that makes the list out of date.
    void noteReportedChange();
    /// The program may have been told of something; what the desktop does next is open.
    void noteDesktopChange();

    SimulatedDesktop desktop_;
    std::optional<SimulatedPanel> panel_;
    std::unique_ptr<InventorySpy> inventory_;
    std::unique_ptr<BackgroundSpy> background_;
    std::optional<Platform> platform_;
    std::unique_ptr<AppServices> services_;
    SwitcherContentCallbacks content_;
    std::vector<Subscription> subscriptions_;

    std::optional<Breach> breach_;
    std::int64_t sessionCount_ = 0;

    // The desktop as the steps made it.
    std::map<Pid, Application> applications_;
    std::vector<WindowId> windows_;
    std::uint64_t flags_ = 0;
    std::set<std::int64_t> heldKeys_;
    bool areSnapshotsHeld_ = false;
    /// Held snapshots have read the desktop when they were requested.
    bool doSnapshotsReadFirst_ = false;
    std::unique_ptr<InventoryReading> earlyReading_;
    bool isTapRefused_ = false;
    TimePoint tapRefusalChanged_{};
    bool isStoreFailing_ = false;
    bool isTrustedBySystem_ = true;
    bool isInputSecure_ = false;
    Point pointer_{};
    TimePoint stepBegan_{};
    double screenWidth_ = 1440;
    TimePoint trustChanged_{};
    TimePoint secureInputChanged_{};
    std::deque<TimePoint> announcements_;

    // What is expected of the program.
    std::unique_ptr<ExpectedList> list_;
    ExpectedSession session_;
    ExpectedSettings settings_;
    ExpectedSettings stored_;
    std::size_t writeCount_ = 0;
    std::deque<Command> commands_;
    /// The tap waits for the answer to its last trigger.
    bool isRequestOpen_ = false;
    std::optional<Activation> activation_;
    /// The window that the user went to since the last activation began; nothing may take it away from the user.
    std::optional<WindowId> usersWindow_;
    Tap tap_;
    /// When a tap that was refused is tried again.
    std::optional<TimePoint> tapRetryDue_;
    std::optional<Point> pointerAnchor_;
    /// The loop ran until nothing was due, in this step.
    bool hasLoopRun_ = false;
    bool isObserving_ = false;
    std::set<Pid> observed_;
    /// A snapshot was requested and has not begun; without effect when the observation ended meanwhile.
    bool isPassPending_ = false;
    bool isPassStale_ = false;
    bool isReadingOpen_ = false;
    /// No snapshot has begun since a change was reported.
    bool isChangeUnread_ = false;
    TimePoint lastReported_{};
    /// When the last session ended.
    TimePoint lastSessionEnd_{};
    TimePoint lastDesktopChange_{};
    TimePoint lastRevalidation_{};
    std::optional<std::vector<std::optional<WindowId>>> revalidated_;
    bool hasRevalidated_ = false;
};

}  // namespace ferrowyn::simulation

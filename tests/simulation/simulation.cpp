#include "tests/simulation/simulation.h"

#include <algorithm>
#include <utility>

#include "input/switcher_controller.h"
#include "input/window_activator.h"
#include "platform/panel.h"

namespace ferrowyn::simulation {

/// Lets the expectations see every reading of the desktop.
class Simulation::InventorySpy final : public WindowInventory {
public:
    InventorySpy(const WindowInventory& inventory, Simulation& simulation)
        : inventory_(inventory), simulation_(simulation) {}

    [[nodiscard]] std::unique_ptr<InventoryReading> beginReading() const override { return simulation_.noteReading(); }
    [[nodiscard]] std::optional<std::vector<std::optional<WindowId>>> windowOrder() const override {
        const auto order = inventory_.windowOrder();
        simulation_.noteRevalidation(order);
        return order;
    }
    [[nodiscard]] std::optional<WindowId> focusedWindowNumber(Pid pid, Seconds timeout) const override {
        const auto id = inventory_.focusedWindowNumber(pid, timeout);
        simulation_.noteFocusQuery(id);
        return id;
    }

private:
    const WindowInventory& inventory_;
    Simulation& simulation_;
};

/// Lets the expectations see when a refresh begins.
class Simulation::BackgroundSpy final : public BackgroundWork {
public:
    BackgroundSpy(BackgroundWork& work, Simulation& simulation) : work_(work), simulation_(simulation) {}

    void run(std::function<void()> work) override {
        simulation_.notePassBegin();
        work_.run(std::move(work));
    }
    void concurrentPerform(std::size_t count, const std::function<void(std::size_t)>& iteration) override {
        work_.concurrentPerform(count, iteration);
    }

private:
    BackgroundWork& work_;
    Simulation& simulation_;
};

class Simulation::Content final : public PanelContent {
public:
    [[nodiscard]] QWidget* widget() override { return nullptr; }
    void synchronize() override {}
    void setBackground(PanelBackground) override {}
    void renderPreview(QImage&) override {}
    [[nodiscard]] bool matchesPreview() const override { return false; }
};

Simulation::Simulation() {
    startProgram();
}

Simulation::~Simulation() {
    subscriptions_.clear();
    services_.reset();
}

void Simulation::startProgram() {
    list_ = std::make_unique<ExpectedList>(SimulatedDesktop::ownPid);
    session_ = {};
    settings_ = stored_;
    commands_.clear();
    isRequestOpen_ = false;
    activation_.reset();
    usersWindow_.reset();
    tap_ = {};
    pointerAnchor_.reset();
    isObserving_ = false;
    isReadingOpen_ = isPassPending_ = isPassStale_ = false;
    isChangeUnread_ = false;
    tap_.mayBeMissing = isTapRefused_;

    panel_.emplace();
    inventory_ = std::make_unique<InventorySpy>(desktop_.platform().windowInventory, *this);
    background_ = std::make_unique<BackgroundSpy>(desktop_.platform().backgroundWork, *this);
    platform_.emplace(
        replacedIn(desktop_.platform(),
                   {.backgroundWork = background_.get(), .windowInventory = inventory_.get(), .panel = &*panel_}));
    services_ = std::make_unique<AppServices>(
        *platform_, [this](SwitcherViewModel&, Preferences&, SwitcherContentCallbacks callbacks) {
            content_ = std::move(callbacks);
            return std::make_unique<Content>();
        });
    follow();
}

void Simulation::follow() {
    auto& monitor = services_->hotKeyMonitor();
    monitor.onCommand = [this, handle = std::exchange(monitor.onCommand, nullptr)](const SwitcherCommand& command) {
        deliver(command, handle);
    };
    monitor.onTapDisabled = [this, handle = std::exchange(monitor.onTapDisabled, nullptr)] {
        noteTapDisabled();
        handle();
    };
    monitor.onTapFailed = [this, handle = std::exchange(monitor.onTapFailed, nullptr)](HotKeyMonitor::Failure failure) {
        endSession();
        handle(failure);
        noteTapFailed(failure);
    };
    auto& activator = services_->switcher().activator();
    activator.onActivated = [this, handle = std::exchange(activator.onActivated, nullptr)](const AppWindow& window) {
        noteActivated(window);
        handle(window);
    };
    auto& index = services_->windowIndex();
    subscriptions_.push_back(index.lastRefresh().subscribeToChanges([this](const auto&) { noteRefresh(); }));
    subscriptions_.push_back(
        services_->switcher().viewModel().rows.subscribe([this](const auto& rows) { noteRows(rows); }));
    subscriptions_.push_back(services_->authorizer().status().subscribeToDistinct(
        [this](AccessibilityStatus status) { followTrust(status); }));
    subscriptions_.push_back(monitor.isRunning().subscribe([this](bool isRunning) { followTap(isRunning); }));
}

void Simulation::followTrust(AccessibilityStatus status) {
    observed_.clear();
    isObserving_ = status == AccessibilityStatus::trusted;
    if (isObserving_) {
        for (const auto& [pid, application] : applications_) {
            if (application.isAdmitted && !application.isUnobservable) {
                observed_.insert(pid);
            }
        }
        noteReportedChange();
        lastRevalidation_ = desktop_.now();
        hasRevalidated_ = false;
        tap_.mayBeMissing = !services_->hotKeyMonitor().isRunning().get() && isTapRefused_;
        tapRetryDue_ = tap_.mayBeMissing ? std::optional(desktop_.now() + Seconds(1)) : std::nullopt;
        tap_.isAbandoned = false;
    } else {
        endSession();
        list_->clear();
        tapRetryDue_.reset();
        // What is being read has no effect any more.
        isReadingOpen_ = false;
        isPassStale_ = isPassPending_;
    }
}

void Simulation::followTap(bool isRunning) {
    if (isRunning) {
        tap_ = {};
    } else {
        // Of a tap that was removed, nothing is delivered any more.
        commands_.clear();
        isRequestOpen_ = false;
        tap_.posted.clear();
        tap_.disabledAt.reset();
    }
}

void Simulation::endProgram() {
    subscriptions_.clear();
    services_->terminate();
    services_.reset();
    desktop_.dropBackgroundWork();
    earlyReading_.reset();
    expect(desktop_.pendingTimerCount() == 0, "leftovers.timers", "a timer outlives the program");
    expect(desktop_.liveObserverCount() == 0, "leftovers.observers", "an application is still observed");
    expect(!desktop_.isObserved(), "leftovers.subscriptions", "the desktop is still observed");
    expect(!desktop_.tapIsInstalled(), "leftovers.tap", "the keyboard tap outlives the program");
    expect(!panel_->state().isVisible || session_.isVisible, "leftovers.panel", "a panel without a session is shown");
}

void Simulation::finish() {
    if (!breach_ && services_) {
        endProgram();
    }
}

void Simulation::perform(const Step& step) {
    if (breach_) {
        return;
    }
    stepBegan_ = desktop_.now();
    hasLoopRun_ = false;
    const bool isKnown =
        performAsUser(step) || performOnLoop(step) || performAsApplication(step) || performAsSystem(step);
    expect(isKnown, "script", printed(step));
    noteWrites();
    if (!breach_) {
        check();
    }
    static_cast<void>(desktop_.takeLog());
    static_cast<void>(desktop_.takeControlCalls());
    static_cast<void>(desktop_.takeIconLoads());
}

std::vector<Pid> Simulation::applications() const {
    std::vector<Pid> pids;
    for (const auto& [pid, application] : applications_) {
        pids.push_back(pid);
    }
    return pids;
}

}  // namespace ferrowyn::simulation

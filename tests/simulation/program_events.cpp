// What the program does, as the expectations see it.

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <utility>
#include <variant>

#include "input/switcher_controller.h"
#include "tests/simulation/simulation.h"

namespace ferrowyn::simulation {

namespace {

/// Rounding of times that were added up.
constexpr Seconds aMoment{1e-6};

/// After these, a pointer that rests over a row still selects it.
bool leavesPointer(const SwitcherCommand& command) {
    return std::holds_alternative<command::Confirm>(command) || std::holds_alternative<command::Cancel>(command) ||
           std::holds_alternative<command::ToggleLayout>(command) ||
           std::holds_alternative<command::ToggleFavourite>(command) ||
           std::holds_alternative<command::ModifierReleased>(command);
}

}  // namespace

/// Lets the expected session follow one command while the panel is shown. The result: the query changed, so the first
/// row is selected when the rows are there.
struct Simulation::CommandFollower {
    Simulation& simulation;
    ExpectedSession& session = simulation.session_;
    ExpectedSettings& settings = simulation.settings_;

    [[nodiscard]] int columns() const { return settings.layout == SwitcherLayout::grid ? 5 : 1; }

    bool operator()(const command::Invoke& invoke) const {
        session.move(invoke.reverse ? -1 : 1);
        return false;
    }
    bool operator()(const command::Move& move) const {
        session.pin();
        session.move(move.step);
        return false;
    }
    bool operator()(const command::MoveVertical& move) const {
        session.pin();
        session.move(move.step * columns());
        return false;
    }
    bool operator()(const command::MoveToEdge& move) const {
        session.pin();
        if (!session.rows.empty()) {
            session.selection = move.first ? 0 : static_cast<int>(session.rows.size()) - 1;
        }
        return false;
    }
    bool operator()(const command::SelectIndex& select) const {
        if (select.ordinal <= static_cast<int>(session.rows.size())) {
            session.selection = select.ordinal - 1;
            simulation.choose();
        }
        return false;
    }
    bool operator()(const command::InsertText& insert) const {
        session.query += insert.text;
        session.pin();
        return true;
    }
    bool operator()(const command::DeleteBackward&) const {
        const bool isEdit = !session.query.empty();
        session.dropLastCharacter();
        return isEdit;
    }
    bool operator()(const command::ClearQuery&) const { return !std::exchange(session.query, {}).empty(); }
    bool operator()(const command::Confirm&) const {
        simulation.choose();
        return false;
    }
    bool operator()(const command::Cancel&) const {
        simulation.endSession();
        return false;
    }
    bool operator()(const command::ToggleLayout&) const {
        session.pin();
        settings.layout = allSwitcherLayouts.at((static_cast<std::size_t>(settings.layout) + 1) % 3);
        return false;
    }
    bool operator()(const command::ToggleFavourite&) const {
        session.pin();
        if (const auto selected = session.selected()) {
            settings.toggleFavourite(*selected);
        }
        return false;
    }
    bool operator()(const command::ModifierReleased&) const {
        if (!session.isPinned && settings.confirmOnModifierRelease) {
            simulation.choose();
        }
        return false;
    }
};

void Simulation::deliver(const SwitcherCommand& command, const std::function<void(const SwitcherCommand&)>& handle) {
    expect(!commands_.empty() && commands_.front().command == command, "commands.order",
           "a command comes that no key stands for, or in another order");
    if (!commands_.empty()) {
        commands_.pop_front();
    }
    if (!leavesPointer(command)) {
        pointerAnchor_ = pointer_;
    }
    if (session_.isVisible) {
        session_.lastCommand = desktop_.now();
        const bool isEdit = std::visit(CommandFollower{*this}, command);
        handle(command);
        session_.selection = isEdit ? 0 : session_.selection;
        return;
    }
    const auto* const invoke = std::get_if<command::Invoke>(&command);
    const bool opens = invoke != nullptr && isTrusted();
    if (opens) {
        beginSession();
    }
    handle(command);
    if (opens) {
        completeSession(invoke->reverse);
    }
}

void Simulation::beginSession() {
    session_.begin(settings_, desktop_.frontmostPid());
}

void Simulation::completeSession(bool reverse) {
    session_.complete(reverse, desktop_.now());
    pointerAnchor_ = pointer_;
    ++sessionCount_;
    checkFrame();
    if (isObserving_) {
        noteReportedChange();
    }
}

void Simulation::endSession() {
    if (session_.isVisible) {
        lastSessionEnd_ = desktop_.now();
    }
    session_.end();
}

void Simulation::choose() {
    const auto chosen = session_.selected();
    endSession();
    requestActivation(chosen);
}

void Simulation::requestActivation(const std::optional<AppWindow>& chosen) {
    if (!chosen) {
        return;
    }
    const auto running = [this](Pid pid) { return applications_.contains(pid); };
    Activation activation{.window = *chosen};
    if (chosen->blockedBy && !running(chosen->blockedBy->pid)) {
        activation.window.blockedBy.reset();
    }
    const auto& dialog = activation.window.blockedBy;
    const Pid pid = dialog ? dialog->pid : chosen->pid;
    const WindowId actual = SimulatedElement::idOf(dialog ? dialog->element : *chosen->axElement);
    const auto obeys = [&](Pid each) {
        const auto found = applications_.find(each);
        return found != applications_.end() && !found->second.isHung && !found->second.ignoresActivation;
    };
    activation.isApplicationRunning = running(pid);
    const auto* window = desktop_.window(actual);
    activation.isObeyed = obeys(pid) && window != nullptr && window->pid == pid;
    // A number that another application's window has got since may lead to either.
    activation.isDisturbed = window != nullptr && window->pid != pid;
    activation.canBeRestored = obeys(chosen->pid);
    activation_ = activation;
    usersWindow_.reset();
}

void Simulation::noteActivated(const AppWindow& window) {
    expect(activation_.has_value() && !activation_->isConcluded, "activation.once",
           fmt::format("window {} is reported without an activation, or twice", window.id));
    expect(!activation_ || activation_->window.id == window.id, "activation.window",
           fmt::format("window {} is reported, which is not the chosen one", window.id));
    if (activation_) {
        activation_->isConcluded = true;
    }
    list_->noteActivated(window.id);
    lastDesktopChange_ = desktop_.now();
}

void Simulation::noteTapDisabled() {
    endSession();
    if (tap_.posted.empty()) {
        return fail("tap.disabled", "the program was told of a disabled tap that was not disabled");
    }
    const auto disabling = tap_.posted.front();
    tap_.posted.pop_front();
    const TimePoint now = desktop_.now();
    tap_.disabledAt = now;
    tap_.hadTrust = isTrustedBySystem_;
    if (disabling == Disabling::byUserInput) {
        tap_.patience = Seconds::zero();
        return;
    }
    const Seconds pause = tap_.lastTimeout ? now - *tap_.lastTimeout : Seconds::zero();
    if (pause > Seconds(40)) {
        tap_.timeouts = 0;
        tap_.isCountCertain = true;
    } else if (pause > Seconds(30)) {
        tap_.isCountCertain = false;
    }
    ++tap_.timeouts;
    tap_.lastTimeout = now;
    tap_.patience = tap_.isCountCertain ? Seconds(0.25 * std::exp2(tap_.timeouts - 1)) : Seconds(3);
}

void Simulation::noteTapFailed(HotKeyMonitor::Failure failure) {
    if (failure != HotKeyMonitor::Failure::repeatedTimeouts) {
        return;
    }
    expect(!tap_.isCountCertain || tap_.timeouts >= 5, "tap.abandoned",
           fmt::format("the tap is abandoned after {} timeouts", tap_.timeouts));
    expect(services_->inputFailure().get() == failure, "tap.failure", "the failure is not shown");
    tap_.isAbandoned = true;
}

void Simulation::noteRows(const std::vector<SwitcherViewModel::Row>& rows) {
    if (!isTrusted()) {
        endSession();
    }
    endIdleSession();
    session_.rebuild(services_->windowIndex().windows().get(), settings_);
    compareRows(rows, session_.rows);
}

void Simulation::notePassBegin() {
    expect(!isPassPending_, "refresh.single", "a snapshot is requested before the one before it has begun");
    isPassPending_ = true;
    isPassStale_ = false;
    list_->notePassBegin();
    if (doSnapshotsReadFirst_) {
        earlyReading_ = desktop_.platform().windowInventory.beginReading();
        isChangeUnread_ = false;
    }
}

std::unique_ptr<InventoryReading> Simulation::noteReading() {
    auto reading = std::move(earlyReading_);
    if (!reading) {
        reading = desktop_.platform().windowInventory.beginReading();
        isChangeUnread_ = false;
    }
    expect(!isReadingOpen_, "refresh.single", "a snapshot begins before the one before it has ended");
    isReadingOpen_ = !isPassStale_;
    isPassPending_ = isPassStale_ = false;
    list_->read(*reading);
    return reading;
}

void Simulation::noteRefresh() {
    isReadingOpen_ = false;
    list_->refresh(desktop_.frontmostPid());
}

void Simulation::noteFocusQuery(std::optional<WindowId> id) {
    if (id.value_or(0) != 0) {
        list_->noteFocus(*id);
    }
}

void Simulation::noteRevalidation(const std::optional<std::vector<std::optional<WindowId>>>& order) {
    const TimePoint now = desktop_.now();
    lastRevalidation_ = now;
    if (hasRevalidated_ && order != revalidated_) {
        noteReportedChange();
    }
    revalidated_ = order;
    hasRevalidated_ = true;
}

/// The half minute has passed, and the loop has run since.
void Simulation::endIdleSession() {
    const bool isDue =
        session_.isVisible && desktop_.now() >= session_.lastCommand + ExpectedSession::longestIdleTime - aMoment;
    // At the very moment, and behind tasks that waited while the main thread was busy, it may or may not have run.
    if (isDue && (hasLoopRun_ || !panel_->state().isVisible)) {
        endSession();
    }
}

void Simulation::noteWrites() {
    const auto count = desktop_.storedValues().size();
    if (count != writeCount_ && !isStoreFailing_) {
        stored_ = settings_;
    }
    writeCount_ = count;
}

void Simulation::noteReportedChange() {
    lastReported_ = desktop_.now();
    isChangeUnread_ = true;
}

void Simulation::noteDesktopChange() {
    lastDesktopChange_ = desktop_.now();
    usersWindow_.reset();
    if (activation_) {
        activation_->isDisturbed = true;
    }
}

}  // namespace ferrowyn::simulation

// What must hold after every step, whatever happened.

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <set>
#include <utility>

#include "input/switcher_controller.h"
#include "tests/simulation/simulation.h"

namespace ferrowyn::simulation {

namespace {

/// Rounding of times that were added up.
constexpr Seconds aMoment{1e-6};
constexpr Seconds coalescing{0.12};
constexpr Seconds revalidation{5.0};
/// The checks of an activation come 0.12, 0.216, 0.3888 and 0.69984 seconds after each other.
constexpr Seconds longestActivation{1.42464};

bool isSameRow(const SwitcherViewModel::Row& row, const ExpectedRow& expected) {
    return sameWindow(row.window, expected.window) && row.highlightedTitleIndices == expected.highlights &&
           row.startsGroup == expected.startsGroup && row.groupSize == expected.groupSize &&
           row.isFavourite == expected.isFavourite;
}

std::string describe(const AppWindow& window, const std::vector<std::int32_t>& highlights, bool startsGroup,
                     int groupSize, bool isFavourite) {
    return fmt::format("{} \"{}\" of {}{}{}{}, group of {}, {} highlights", window.id, window.title, window.pid,
                       window.isMinimized ? ", minimised" : "", startsGroup ? ", starts a group" : "",
                       isFavourite ? ", favourite" : "", groupSize, highlights.size());
}

}  // namespace

void Simulation::fail(std::string_view invariant, std::string detail) {
    if (!breach_) {
        breach_ = Breach{std::string(invariant), std::move(detail)};
    }
}

void Simulation::expect(bool holds, std::string_view invariant, std::string_view detail) {
    if (!holds) {
        fail(invariant, std::string(detail));
    }
}

void Simulation::check() {
    while (!announcements_.empty() && desktop_.now() > announcements_.front() + Seconds(0.25) && hasLoopRun_) {
        announcements_.pop_front();
    }
    endIdleSession();
    checkTrust();
    checkPanel();
    checkSession();
    checkList();
    checkRefresh();
    checkObservers();
    checkActivation();
    checkTap();
    checkTimers();
    checkSettings();
}

void Simulation::checkPanel() {
    const bool isVisible = panel_->state().isVisible;
    expect(isVisible || !session_.isVisible, "panel.visible", "the panel is hidden during a session");
    const bool isIdle = isVisible && desktop_.now() > session_.lastCommand + ExpectedSession::longestIdleTime;
    expect(!isVisible || session_.isVisible, isIdle && hasLoopRun_ ? "panel.idle" : "panel.visible",
           "the panel is shown without a session");
    if (!hasQueueRun()) {
        return;
    }
    const TapFlags tap = tapFlags();
    expect(tap.isVisible == isVisible, "panel.tap",
           fmt::format("the panel is {}, and the tap believes that it is {}", isVisible ? "shown" : "hidden",
                       tap.isVisible ? "shown" : "hidden"));
    expect(!isVisible || tap.isHoldMode == session_.isHoldMode, "panel.hold-mode",
           "the tap does not know whether a release switches");
    expect(tap.modifierFlag == modifierMasks.at(static_cast<std::size_t>(settings_.modifier)), "tap.modifier",
           "the tap listens to another modifier");
    if (desktop_.tapIsInstalled()) {
        expect(desktop_.tapSessionIsOpen() == isVisible, "panel.tap-session",
               "the tap was not told of the session, or of its end");
        expect(desktop_.tapTrigger() == settings_.modifier, "tap.modifier", "the tap has another trigger");
    }
}

/// The panel's place when it is shown: as if it were as high as it can become, a little above the middle.
void Simulation::checkFrame() {
    const bool isGrid = settings_.layout == SwitcherLayout::grid;
    const double hints = settings_.showShortcutHints ? 34 : 0;
    const int mostLines = std::max(isGrid ? (settings_.maximumVisibleRows + 2) / 3 : settings_.maximumVisibleRows, 1);
    const auto height = [&](int items, int groups) {
        if (items == 0) {
            return 188 + hints;
        }
        const int lines = std::min(isGrid ? (items + 4) / 5 : items, mostLines);
        const int headers = settings_.layout == SwitcherLayout::grouped ? std::min(lines, groups) : 0;
        return (isGrid ? 104.0 : 52.0) * lines + (isGrid ? 6.0 : 1.0) * (lines - 1) + 28.0 * headers + 72 + hints;
    };
    const auto groups = std::ranges::count(session_.rows, true, &ExpectedRow::startsGroup);
    const double most = 875.0 - 24;
    const double shown = std::min(height(static_cast<int>(session_.rows.size()), static_cast<int>(groups)), most);
    const double full = std::min(height(mostLines * (isGrid ? 5 : 1), mostLines), most);
    const double width = isGrid ? 760 : 640;
    const double top = std::round(std::min(875.0 - 12, 875.0 / 2 + full / 2 + 0.08 * 875));
    const Rect expected{std::round((screenWidth_ - width) / 2), std::round(std::max(top - shown, 12.0)), width, shown};
    const Rect& frame = panel_->state().frame;
    expect(frame == expected, "panel.frame",
           fmt::format("{} {} {} {} instead of {} {} {} {}", frame.x, frame.y, frame.width, frame.height, expected.x,
                       expected.y, expected.width, expected.height));
}

void Simulation::checkSession() {
    auto& viewModel = services_->switcher().viewModel();
    expect(viewModel.isInSession() == session_.isVisible, "session.state", "a session without its panel");
    expect(viewModel.query.get() == session_.query, "session.query",
           fmt::format("\"{}\" instead of \"{}\"", viewModel.query.get(), session_.query));
    expect(viewModel.isPinned.get() == session_.isPinned, "session.pinned",
           session_.isPinned ? "the panel is not pinned" : "the panel is pinned");
    expect(viewModel.selectedIndex.get() == session_.selection, "session.selection",
           fmt::format("row {} is selected instead of {}", viewModel.selectedIndex.get(), session_.selection));
    expect(viewModel.isAccessibilityTrusted.get() == isTrusted(), "session.trust", "the panel shows the wrong trust");
    if (hasQueueRun()) {
        // After a session its rows stay as they are until something rebuilds them.
        if (session_.isVisible) {
            compareRows(viewModel.rows.get(), session_.rowsFrom(services_->windowIndex().windows().get(), settings_));
        }
        expect(commands_.empty(), "commands.lost", "a command of a key was not delivered");
    }
}

void Simulation::compareRows(const std::vector<SwitcherViewModel::Row>& rows,
                             const std::vector<ExpectedRow>& expected) {
    if (std::ranges::equal(rows, expected, isSameRow)) {
        return;
    }
    std::string detail = "the rows are";
    for (const auto& row : rows) {
        detail +=
            "\n  " + describe(row.window, row.highlightedTitleIndices, row.startsGroup, row.groupSize, row.isFavourite);
    }
    detail += "\ninstead of";
    for (const auto& row : expected) {
        detail += "\n  " + describe(row.window, row.highlights, row.startsGroup, row.groupSize, row.isFavourite);
    }
    fail("session.rows", detail);
}

void Simulation::checkList() {
    const auto& published = services_->windowIndex().windows().get();
    if (sameWindows(published, list_->windows())) {
        return;
    }
    const bool isSameOrder = std::ranges::equal(published, list_->windows(), {}, &AppWindow::id, &AppWindow::id);
    const auto known = list_->windows();
    const bool isSameSet = std::ranges::is_permutation(published, known, {}, &AppWindow::id, &AppWindow::id);
    fail(isSameOrder ? "list.details"
         : isSameSet ? "list.order"
                     : "list.windows",
         fmt::format("the list is {} instead of {}", idsOf(published), idsOf(list_->windows())));
}

void Simulation::checkRefresh() {
    if (!isObserving_ || !hasLoopRun_) {
        return;
    }
    const TimePoint now = desktop_.now();
    expect(now <= lastRevalidation_ + revalidation + aMoment, "refresh.revalidation",
           "nobody looks any more for changes without a notification");
    expect(desktop_.heldBackgroundWorkCount() <= 1, "refresh.single", "more than one snapshot waits");
    const bool isActivating =
        activation_ && !activation_->isConcluded && (!activation_->hasBegun || now <= activation_->deadline + aMoment);
    const TimePoint begin = std::max(lastReported_, lastDesktopChange_);
    expect(!isChangeUnread_ || areSnapshotsHeld_ || isActivating || now <= begin + coalescing + aMoment,
           "refresh.bound", "a change was reported, and no snapshot followed");
}

void Simulation::checkObservers() {
    if (!hasLoopRun_) {
        return;
    }
    if (!isObserving_) {
        expect(desktop_.liveObserverCount() == 0, "observers.stopped", "applications are observed without trust");
        return;
    }
    // By each application that has the window in the list: a number that is used again may be carried over once more.
    std::set<std::pair<Pid, WindowId>> listed;
    for (const AppWindow& window : list_->refreshed()) {
        if (window.axElement && observed_.contains(window.pid)) {
            listed.emplace(window.pid, SimulatedElement::idOf(*window.axElement));
        }
    }
    std::map<WindowId, std::size_t> expected;
    for (const auto& [pid, id] : listed) {
        expected[id] += 4;
    }
    expect(desktop_.liveObserverCount() == observed_.size(), "observers.applications",
           fmt::format("{} applications are observed instead of {}", desktop_.liveObserverCount(), observed_.size()));
    for (const Pid pid : observed_) {
        expect(desktop_.applicationNotifications(pid).size() == 6, "observers.applications",
               fmt::format("application {} has {} notifications", pid, desktop_.applicationNotifications(pid).size()));
    }
    for (const WindowId id : windows_) {
        const auto count = desktop_.windowNotifications(id).size();
        expect(count == expected[id], "observers.windows",
               fmt::format("window {} has {} notifications instead of {}", id, count, expected[id]));
    }
}

void Simulation::checkActivation() {
    if (usersWindow_) {
        const auto front = desktop_.frontmostPid();
        expect(front && desktop_.focusedWindow(*front) == usersWindow_, "activation.overtaken",
               fmt::format("the user went to window {} and was taken away from it", *usersWindow_));
    }
    if (!activation_) {
        return;
    }
    Activation& activation = *activation_;
    const auto& dialog = activation.window.blockedBy;
    if (!activation.hasBegun && hasQueueRun()) {
        activation.hasBegun = true;
        activation.deadline = stepBegan_ + longestActivation;
        if (activation.isObeyed && !activation.isDisturbed) {
            const Pid pid = dialog ? dialog->pid : activation.window.pid;
            const WindowId chosen = SimulatedElement::idOf(dialog ? dialog->element : *activation.window.axElement);
            expect(desktop_.frontmostPid() == pid && desktop_.focusedWindow(pid) == chosen, "activation.focus",
                   fmt::format("window {} was chosen and does not have the keyboard", chosen));
            expect(!desktop_.isHidden(pid), "activation.hidden",
                   "the application of the chosen window is still hidden");
            const WindowId restored = SimulatedElement::idOf(*activation.window.axElement);
            const auto* window = desktop_.window(restored);
            expect(!activation.window.isMinimized || !activation.canBeRestored || window == nullptr ||
                       !window->isMinimized,
                   "activation.minimized", "the chosen window is still minimised");
        }
    }
    const bool isLate = activation.hasBegun && hasLoopRun_ && desktop_.now() > activation.deadline + aMoment;
    expect(!isLate || activation.isConcluded || activation.isDisturbed || !activation.isApplicationRunning,
           "activation.missing", fmt::format("the activation of window {} was not reported", activation.window.id));
}

void Simulation::checkTap() {
    const TimePoint now = desktop_.now();
    if (desktop_.tapIsEnabled() && hasQueueRun()) {
        tap_.disabledAt.reset();
    }
    if (!isObserving_ || !hasLoopRun_) {
        return;
    }
    if (tapRetryDue_ && now > *tapRetryDue_ + aMoment) {
        const bool isRefused = isTapRefused_ || !isTrustedBySystem_ || tapRefusalChanged_ >= *tapRetryDue_ ||
                               trustChanged_ >= *tapRetryDue_;
        tap_.mayBeMissing = tap_.mayBeMissing && isRefused;
        tapRetryDue_.reset();
    }
    expect(tap_.mayBeMissing || tap_.isAbandoned || desktop_.tapIsInstalled(), "tap.installed",
           "there is no keyboard tap");
    expect(!tap_.isCountCertain || tap_.timeouts < 5 || !desktop_.tapIsInstalled(), "tap.abandoned",
           "the tap is not abandoned after five timeouts");
    if (tap_.disabledAt && isTrustedBySystem_ && desktop_.tapIsInstalled()) {
        const TimePoint enabling = *tap_.disabledAt + tap_.patience;
        const TimePoint due = tap_.hadTrust ? enabling : std::max(enabling, trustChanged_ + Seconds(3));
        expect(now <= due + aMoment, "tap.recovery", "the tap is still disabled");
    }
}

void Simulation::checkTrust() {
    if (!hasLoopRun_) {
        return;
    }
    const TimePoint now = desktop_.now();
    const Seconds patience(isTrusted() ? 2.0 : 1.0);
    expect(isTrusted() == isTrustedBySystem_ || now <= trustChanged_ + patience + aMoment, "trust.noticed",
           "a change of the trust is not noticed");
    expect(services_->authorizer().isSecureInputActive().get() == isInputSecure_ ||
               now <= secureInputChanged_ + Seconds(2) + aMoment,
           "trust.secure-input", "secure input is not noticed");
    expect(services_->isActive() == isTrusted(), "trust.active", "the services do not follow the trust");
    if (!isTrusted()) {
        expect(services_->windowIndex().windows().get().empty(), "trust.list", "windows are listed without trust");
        expect(!desktop_.tapIsInstalled(), "trust.tap", "there is a tap without trust");
        expect(!panel_->state().isVisible, "trust.panel", "the panel is shown without trust");
    }
}

/// Each kind of timer once, and the few that may be there several times.
void Simulation::checkTimers() {
    if (!hasLoopRun_) {
        return;
    }
    const auto one = [](bool isThere) { return static_cast<std::size_t>(isThere); };
    const std::size_t trust = 2 + announcements_.size();
    const std::size_t tap = one(desktop_.tapIsInstalled()) + one(tap_.mayBeMissing) + one(tap_.timeouts > 0) * 4;
    const std::size_t list = 2 * one(isObserving_ || isChangeUnread_);
    const std::size_t session = one(session_.isVisible) + one(activation_ && !activation_->isConcluded);
    // The next session's first frame is prepared a moment after a session.
    const std::size_t preparation = one(desktop_.now() < lastSessionEnd_ + Seconds(0.1) + aMoment);
    const std::size_t most = trust + tap + list + session + preparation;
    expect(desktop_.pendingTimerCount() <= most, "leftovers.timers",
           fmt::format("{} timers wait instead of at most {}", desktop_.pendingTimerCount(), most));
}

void Simulation::checkSettings() {
    auto& preferences = services_->preferences();
    const ExpectedSettings actual{.modifier = preferences.modifier.get(),
                                  .includeMinimized = preferences.includeMinimized.get(),
                                  .includeOtherSpaces = preferences.includeOtherSpaces.get(),
                                  .showShortcutHints = preferences.showShortcutHints.get(),
                                  .confirmOnModifierRelease = preferences.confirmOnModifierRelease.get(),
                                  .maximumVisibleRows = preferences.maximumVisibleRows.get(),
                                  .layout = preferences.layout.get(),
                                  .showActiveAppWindowsFirst = preferences.showActiveAppWindowsFirst.get(),
                                  .favouritesFirst = preferences.favouritesFirst.get(),
                                  .automaticUpdateChecks = preferences.automaticUpdateChecks.get(),
                                  .favourites = services_->favourites().bundleIdentifiers().get()};
    expect(actual == settings_, "settings.values", "a setting or a favourite is not what the user made it");
}

TapFlags Simulation::tapFlags() {
    const auto snapshot = services_->hotKeyMonitor().state().snapshot();
    return {snapshot.modifierFlag, snapshot.isSwitcherVisible, snapshot.isHoldModeActive};
}

}  // namespace ferrowyn::simulation

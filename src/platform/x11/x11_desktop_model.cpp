#include "platform/x11/x11_desktop_model.h"

#include <algorithm>
#include <utility>

namespace ferrowyn {

void X11DesktopModel::apply(const X11RootFacts& root, bool isWindowManagerRunning,
                            std::vector<X11WindowFacts> changedWindows) {
    Announcements announcements;
    const auto known = knownApplications();
    const bool managerChanged =
        std::exchange(isWindowManagerRunning_, isWindowManagerRunning) != isWindowManagerRunning;
    root_ = root.root;
    supportsRestacking_ = root.supportsRestacking;
    keepsFullScreenOnTop_ = root.keepsFullScreenOnTop;

    std::vector<xcb_window_t> arrived;
    if (!changedWindows.empty()) {
        Windows renamed;
        for (auto& window : changedWindows) {
            update(std::move(window), renamed, announcements);
        }
        arrived = numberApplications(renamed, announcements);
    }
    // While a manager is being replaced there is no list for a moment, but the windows still exist.
    if (root.stacking) {
        order_.assign(root.stacking->rbegin(), root.stacking->rend());
        if (removeUnlisted(announcements)) {
            // A dialog whose parent window is gone may now belong to another application.
            std::ranges::copy(numberApplications({}, announcements), std::back_inserter(arrived));
        }
    }
    announceLaunchesAndWindows(arrived, known, announcements);
    if (std::exchange(currentDesktop_, root.currentDesktop) != root.currentDesktop) {
        announcements.workspaceEvents.push_back({WorkspaceEvent::Kind::activeSpaceDidChange, std::nullopt});
    }
    const bool activeChanged = std::exchange(activeWindow_, root.activeWindow) != root.activeWindow;
    sessionStart_.reset();
    const auto stolenFrom = reviewExpectation();
    reportActive(announcements);

    send(announcements);
    if (activeChanged) {
        activeWindowChanges_.send(activeWindow_);
    }
    if (stolenFrom) {
        focusThefts_.send(*stolenFrom);
    }
    if (managerChanged) {
        windowManagerChanges_.send(isWindowManagerRunning);
    }
}

std::optional<xcb_window_t> X11DesktopModel::reviewExpectation() {
    if (!expectation_) {
        return std::nullopt;
    }
    if (expectation_->window == activeWindow_) {
        expectation_->isReached = true;
        if (expectation_->path == Path::onOneDesktop) {
            expectation_.reset();
        }
        return std::nullopt;
    }
    const auto* const active = find(activeWindow_);
    // The active window may be a dialog of the expected window, which is no theft.
    if (!expectation_->isReached || active == nullptr || active->isTransient) {
        return std::nullopt;
    }
    const xcb_window_t expected = expectation_->window;
    if (const auto* const facts = find(expected); facts != nullptr && !facts->isOnDesktop(currentDesktop_)) {
        // The desktop has changed again. An application that takes the focus late does not do that, so the user did.
        expectation_.reset();
        return std::nullopt;
    }
    expectActive(expected, Path::onOneDesktop);
    return expected;
}

std::unordered_set<Pid> X11DesktopModel::knownApplications() const {
    std::unordered_set<Pid> known;
    for (const auto& [id, window] : windows_) {
        known.insert(window.pid);
    }
    return known;
}

void X11DesktopModel::update(X11WindowFacts window, Windows& renamed, Announcements& announcements) {
    const auto known = windows_.find(window.id);
    if (known == windows_.end()) {
        window.pid = 0;
        windows_.emplace(window.id, std::move(window));
        return;
    }
    window.pid = known->second.pid;
    const auto old = std::exchange(known->second, std::move(window));
    const auto& now = known->second;
    if (old.identity != now.identity) {
        renamed.push_back(old);
    }
    if (old.isHidden != now.isHidden) {
        announcements.notifications.push_back({now.pid, now.id,
                                               now.isHidden ? AccessibilityNotification::windowMiniaturized
                                                            : AccessibilityNotification::windowDeminiaturized});
    }
    // Each of these facts changes which windows belong to the active Space or which of them take input.
    if (old.desktop != now.desktop || old.isFullScreen != now.isFullScreen || old.kind != now.kind ||
        old.skipsTaskbar != now.skipsTaskbar || old.isModal != now.isModal || old.transientFor != now.transientFor ||
        old.group != now.group || old.opacity != now.opacity || old.identity != now.identity) {
        announcements.workspaceEvents.push_back({WorkspaceEvent::Kind::activeSpaceDidChange, std::nullopt});
    }
}

std::vector<xcb_window_t> X11DesktopModel::numberApplications(const Windows& renamed, Announcements& announcements) {
    std::vector<xcb_window_t> arrived;
    std::unordered_map<Pid, Windows> left;
    for (auto& [id, window] : windows_) {
        const auto number = directory_.numberFor(window, [this](xcb_window_t other) { return find(other); });
        const auto previous = std::exchange(window.pid, number);
        if (previous == number) {
            continue;
        }
        arrived.push_back(id);
        if (previous == 0) {
            continue;  // a new window
        }
        forgetFocusOf(id);
        const auto before = std::ranges::find(renamed, id, &X11WindowFacts::id);
        left[previous].push_back(before != renamed.end() ? *before : window);
    }
    announceTerminations(left, announcements);
    return arrived;
}

void X11DesktopModel::announceTerminations(const std::unordered_map<Pid, Windows>& lost,
                                           Announcements& announcements) const {
    for (const auto& [pid, windows] : lost) {
        if (!factsOf(pid).empty()) {
            continue;
        }
        std::vector<const X11WindowFacts*> last;
        std::ranges::transform(windows, std::back_inserter(last), [](const auto& window) { return &window; });
        auto application = directory_.describe(pid, last);
        application.isTerminated = true;
        announcements.workspaceEvents.push_back({WorkspaceEvent::Kind::didTerminate, std::move(application)});
    }
}

bool X11DesktopModel::removeUnlisted(Announcements& announcements) {
    const std::unordered_set<xcb_window_t> listed(order_.begin(), order_.end());
    Windows removed;
    for (auto entry = windows_.begin(); entry != windows_.end();) {
        if (listed.contains(entry->first)) {
            ++entry;
            continue;
        }
        removed.push_back(std::move(entry->second));
        entry = windows_.erase(entry);
    }
    announceRemoved(removed, announcements);
    return !removed.empty();
}

void X11DesktopModel::forget(xcb_window_t window) {
    const auto found = windows_.find(window);
    if (found == windows_.end()) {
        return;
    }
    Announcements announcements;
    const auto known = knownApplications();
    const Windows removed{std::move(found->second)};
    windows_.erase(found);
    std::erase(order_, window);
    announceRemoved(removed, announcements);
    announceLaunchesAndWindows(numberApplications({}, announcements), known, announcements);
    send(announcements);
}

/// Called after the windows were removed from `windows_`.
void X11DesktopModel::announceRemoved(const Windows& windows, Announcements& announcements) {
    std::unordered_map<Pid, Windows> removed;
    for (const auto& window : windows) {
        announcements.notifications.push_back({window.pid, window.id, AccessibilityNotification::uiElementDestroyed});
        forgetFocusOf(window.id);
        if (reportedActive_ == window.id) {
            reportedActive_ = XCB_WINDOW_NONE;
        }
        removed[window.pid].push_back(window);
    }
    announceTerminations(removed, announcements);
}

void X11DesktopModel::announceLaunchesAndWindows(const std::vector<xcb_window_t>& arrived,
                                                 std::unordered_set<Pid> knownApplications,
                                                 Announcements& announcements) const {
    // An application that ended in this update and has a window again counts as launched.
    for (const auto& event : announcements.workspaceEvents) {
        if (event.kind == WorkspaceEvent::Kind::didTerminate) {
            knownApplications.erase(event.application->pid);
        }
    }
    for (const auto window : arrived) {
        const auto* const facts = find(window);
        if (facts == nullptr) {
            continue;
        }
        if (knownApplications.insert(facts->pid).second) {
            announcements.workspaceEvents.push_back({WorkspaceEvent::Kind::didLaunch, runningApplication(facts->pid)});
        } else if (!facts->isDesktopElement()) {
            announcements.notifications.push_back({facts->pid, std::nullopt, AccessibilityNotification::windowCreated});
        }
    }
}

void X11DesktopModel::reportActive(Announcements& announcements) {
    const auto* const active = find(activeWindow_);
    const bool isStage = expectation_ && expectation_->window != activeWindow_;
    if (active != nullptr && !isStage) {
        report(*active, announcements);
    }
}

void X11DesktopModel::report(const X11WindowFacts& active, Announcements& announcements) {
    if (active.id == std::exchange(reportedActive_, active.id) && active.pid == reportedPid_) {
        return;
    }
    lastActive_[active.pid] = active.id;
    if (std::exchange(reportedPid_, active.pid) != active.pid) {
        announcements.workspaceEvents.push_back({WorkspaceEvent::Kind::didActivate, runningApplication(active.pid)});
        announcements.notifications.push_back(
            {active.pid, std::nullopt, AccessibilityNotification::applicationActivated});
    }
    announcements.notifications.push_back({active.pid, std::nullopt, AccessibilityNotification::mainWindowChanged});
    announcements.notifications.push_back({active.pid, std::nullopt, AccessibilityNotification::focusedWindowChanged});
}

void X11DesktopModel::stopExpectingActive() {
    if (!expectation_) {
        return;
    }
    expectation_.reset();
    sessionStart_.reset();
    Announcements announcements;
    reportActive(announcements);
    send(announcements);
}

void X11DesktopModel::startSessionFrom(xcb_window_t active) {
    sessionStart_.reset();
    if (const auto* const window = find(expectation_ ? expectation_->window : active)) {
        sessionStart_ = window->id;
        Announcements announcements;
        report(*window, announcements);
        send(announcements);
    }
}

void X11DesktopModel::forgetFocusOf(xcb_window_t window) {
    std::erase_if(lastActive_, [&](const auto& entry) { return entry.second == window; });
}

std::optional<xcb_window_t> X11DesktopModel::lastActiveOf(Pid pid) const {
    const auto found = lastActive_.find(pid);
    return found == lastActive_.end() ? std::nullopt : std::optional(found->second);
}

void X11DesktopModel::refresh(xcb_window_t window, const X11PassingFacts& facts) {
    const auto found = windows_.find(window);
    if (found == windows_.end()) {
        return;
    }
    auto& known = found->second;
    if (facts.title) {
        known.title = *facts.title;
    }
    if (facts.isMapped) {
        known.isMapped = *facts.isMapped;
    }
    if (known.frame && facts.position) {
        known.frame->x = facts.position->x;
        known.frame->y = facts.position->y;
    }
    if (known.frame && facts.size) {
        known.frame->width = facts.size->width;
        known.frame->height = facts.size->height;
    }
}

X11DesktopSnapshot X11DesktopModel::snapshot() const {
    X11DesktopSnapshot snapshot{.isValid = true,
                                .root = root_,
                                .currentDesktop = currentDesktop_,
                                .activeWindow = activeWindow_,
                                .lastActive = lastActive_};
    snapshot.windows.reserve(windows_.size());
    for (const auto window : order_) {
        if (const auto* const facts = find(window)) {
            snapshot.windows.push_back(*facts);
        }
    }
    return snapshot;
}

void X11DesktopModel::noteTitleChanged(xcb_window_t window) {
    if (const auto* const facts = find(window)) {
        notifications_.send({facts->pid, window, AccessibilityNotification::titleChanged});
    }
}

void X11DesktopModel::noteInstalledApplicationsChanged() {
    Announcements announcements;
    const auto known = knownApplications();
    const auto arrived = numberApplications({}, announcements);
    announceLaunchesAndWindows(arrived, known, announcements);
    reportActive(announcements);
    send(announcements);
}

void X11DesktopModel::send(const Announcements& announcements) const {
    for (const auto& event : announcements.workspaceEvents) {
        workspaceEvents_.send(event);
    }
    for (const auto& notification : announcements.notifications) {
        notifications_.send(notification);
    }
}

std::vector<xcb_window_t> X11DesktopModel::order() const {
    std::vector<xcb_window_t> order;
    order.reserve(order_.size());
    for (const auto window : order_) {
        if (const auto* const facts = find(window); facts != nullptr && !facts->isDesktopElement()) {
            order.push_back(window);
        }
    }
    return order;
}

const X11WindowFacts* X11DesktopModel::find(xcb_window_t window) const {
    const auto found = windows_.find(window);
    return found == windows_.end() ? nullptr : &found->second;
}

std::vector<xcb_window_t> X11DesktopModel::fullScreenWindowsLeftAbove(xcb_window_t window) const {
    std::vector<xcb_window_t> above;
    const auto* const activated = find(window);
    if (!keepsFullScreenOnTop_ || activated == nullptr) {
        return above;
    }
    for (const auto& [id, facts] : windows_) {
        // A dialog is always stacked above its parent window.
        if (id != window && id != activated->transientFor && facts.isFullScreen && !facts.isHidden &&
            !facts.isAlwaysOnTop && facts.isOnDesktop(activated->desktop)) {
            above.push_back(id);
        }
    }
    return above;
}

std::vector<xcb_window_t> X11DesktopModel::windowsOf(Pid pid) const {
    auto windows = order();
    std::erase_if(windows, [&](xcb_window_t window) { return find(window)->pid != pid; });
    return windows;
}

std::vector<const X11WindowFacts*> X11DesktopModel::factsOf(Pid pid) const {
    std::vector<const X11WindowFacts*> facts;
    for (const auto& [id, window] : windows_) {
        if (window.pid == pid) {
            facts.push_back(&window);
        }
    }
    return facts;
}

std::vector<RunningApplication> X11DesktopModel::runningApplications() const {
    std::unordered_map<Pid, std::vector<const X11WindowFacts*>> windowsByPid;
    for (const auto& [id, window] : windows_) {
        windowsByPid[window.pid].push_back(&window);
    }
    std::vector<RunningApplication> applications;
    applications.reserve(windowsByPid.size());
    for (const auto& [pid, windows] : windowsByPid) {
        applications.push_back(directory_.describe(pid, windows));
    }
    std::ranges::sort(applications, {}, &RunningApplication::pid);
    return applications;
}

std::optional<RunningApplication> X11DesktopModel::runningApplication(Pid pid) const {
    const auto windows = factsOf(pid);
    return windows.empty() ? std::nullopt : std::optional(directory_.describe(pid, windows));
}

std::optional<Pid> X11DesktopModel::frontmostPid() const {
    if (const auto* const active = find(sessionStart_.value_or(activeWindow_))) {
        return active->pid;
    }
    const auto* const last = find(reportedActive_);
    const bool isStillInUse = last != nullptr && !last->isHidden && last->isOnDesktop(currentDesktop_);
    return isStillInUse ? std::optional(last->pid) : std::nullopt;
}

}  // namespace ferrowyn

#include "platform/x11/x11_desktop_monitor.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <utility>

#include "platform/x11/x11_connection.h"
#include "platform/x11/xcb_reply.h"

namespace ferrowyn {

X11TitleChanges::X11TitleChanges(MainLoop& mainLoop, std::function<void(xcb_window_t)> onChange)
    : mainLoop_(mainLoop), onChange_(std::move(onChange)) {}

void X11TitleChanges::note(xcb_window_t window) {
    if (std::ranges::find(changed_, window) != changed_.end()) {
        return;
    }
    const bool isFirst = changed_.empty();
    changed_.push_back(window);
    if (isFirst) {
        const auto rest = lastReport_ ? *lastReport_ + interval - mainLoop_.now() : Seconds::zero();
        timer_ = mainLoop_.after(std::max(rest, gatheringTime), [this] { reportAll(); });
    }
}

void X11TitleChanges::reportAll() {
    lastReport_ = mainLoop_.now();
    for (const auto window : std::exchange(changed_, {})) {
        onChange_(window);
    }
}

Seconds X11ReadingLimit::begin() {
    const auto now = mainLoop_.now();
    while (left_ < burst && now - refilled_ >= interval) {
        refilled_ += interval;
        ++left_;
    }
    if (left_ == burst) {
        refilled_ = now;
    }
    if (left_ == 0) {
        return interval - (now - refilled_);
    }
    --left_;
    return Seconds::zero();
}

void X11ReadingLimit::noteUnlimited() {
    if (begin() > Seconds::zero()) {
        refilled_ = mainLoop_.now();
    }
}

namespace {

/// Longer than a manager needs for an activation, shorter than the time until the user's next one.
constexpr Seconds activationGrace = std::chrono::milliseconds(300);

/// First the root's properties, then those of the windows.
constexpr int roundTripsOfReading = 2;

}  // namespace

X11DesktopMonitor::X11DesktopMonitor(MainLoop& mainLoop, X11EventConnection& events, const X11Atoms& atoms,
                                     const X11ApplicationDirectory& directory)
    : mainLoop_(mainLoop),
      events_(events),
      atoms_(atoms),
      model_(directory),
      owners_(events.connection()),
      limit_(mainLoop),
      titleChanges_(mainLoop, [this](xcb_window_t window) { model_.noteTitleChanged(window); }) {
    eventSubscription_ = events_.observe([this](const xcb_generic_event_t& event) { handleEvent(event); });
    makeClock();
    readFirstTime();
}

void X11DesktopMonitor::makeClock() {
    auto* const xcb = events_.get();
    clockWindow_ = xcb_generate_id(xcb);
    const std::array<std::uint32_t, 2> values{1, XCB_EVENT_MASK_PROPERTY_CHANGE};
    xcb_create_window(xcb, 0, clockWindow_, events_.root(), -1, -1, 1, 1, 0, XCB_WINDOW_CLASS_INPUT_ONLY,
                      XCB_COPY_FROM_PARENT, XCB_CW_OVERRIDE_REDIRECT | XCB_CW_EVENT_MASK, values.data());
    xcb_change_property(xcb, XCB_PROP_MODE_APPEND, clockWindow_, atoms_.netWmName, atoms_.utf8String, 8, 0, nullptr);
}

void X11DesktopMonitor::readFirstTime() {
    const auto root = X11RootRequests(events_.get(), events_.root(), atoms_).collect(events_.get(), atoms_);
    const auto check = requestManagerCheck(root);
    auto windows = X11WindowBatch(events_.get(), root, atoms_, owners_, windowsToRead(root)).collect();
    applyReading(root, check, std::move(windows));
}

void X11DesktopMonitor::handleEvent(const xcb_generic_event_t& event) {
    const auto mark = [this](xcb_window_t window, X11PassingRequests::Part part) { changedParts_[window] |= part; };
    if (events_.isScreenChange(event)) {
        screenChanges_.send(true);
        return;
    }
    switch (event.response_type) {
        case XCB_PROPERTY_NOTIFY:
            handleProperty(reinterpret_cast<const xcb_property_notify_event_t&>(event));
            break;
        // While the panel is shown, the root reports these events about its child windows as well.
        case XCB_DESTROY_NOTIFY:
            if (const auto& end = reinterpret_cast<const xcb_destroy_notify_event_t&>(event); end.event == end.window) {
                handleDestroyed(end.window);
            }
            break;
        case XCB_CONFIGURE_NOTIFY:
            if (const auto& change = reinterpret_cast<const xcb_configure_notify_event_t&>(event);
                change.event == change.window && change.window != events_.root()) {
                mark(change.window, X11PassingRequests::size);
            }
            break;
        case XCB_MAP_NOTIFY:
        case XCB_UNMAP_NOTIFY:
            // Both events begin with the same fields.
            if (const auto& change = reinterpret_cast<const xcb_map_notify_event_t&>(event);
                change.event == change.window) {
                mark(change.window, X11PassingRequests::mapping);
            }
            break;
        default:
            // Errors concern windows that were destroyed before a request reached the server; they are ignored.
            break;
    }
}

void X11DesktopMonitor::handleDestroyed(xcb_window_t window) {
    if (isReading_) {
        destroyedMeanwhile_.insert(window);
    }
    changedWindows_.erase(window);
    changedParts_.erase(window);
    if (model_.find(window) != nullptr) {
        // Removed at once: the manager's list follows later, and by then a new window may have the same XID.
        model_.forget(window);
        return;
    }
    // It may be the manager's check window, and then the manager has ended.
    isRootChanged_ = true;
    readAgain();
}

void X11DesktopMonitor::handleProperty(const xcb_property_notify_event_t& event) {
    latestServerTime_ = std::max(event.time, xcb_timestamp_t{1});
    if (event.window == events_.root()) {
        const std::array relevant{atoms_.netClientListStacking, atoms_.netClientList,        atoms_.netActiveWindow,
                                  atoms_.netCurrentDesktop,     atoms_.netSupportingWmCheck, atoms_.netSupported};
        if (std::ranges::find(relevant, event.atom) != relevant.end()) {
            isRootChanged_ = true;
            readAgain();
        }
        return;
    }
    if (event.window == clockWindow_) {
        return;
    }
    if (event.atom == atoms_.netWmName || event.atom == XCB_ATOM_WM_NAME) {
        changedParts_[event.window] |= X11PassingRequests::title;
        titleChanges_.note(event.window);
        return;
    }
    if (event.atom == atoms_.netWmIcon) {
        iconChanges_.send(event.window);
        return;
    }
    const std::array relevant{atoms_.netWmState,
                              atoms_.wmState,
                              atoms_.netWmDesktop,
                              atoms_.netWmWindowType,
                              atoms_.netWmPid,
                              atoms_.netWmWindowOpacity,
                              atoms_.gtkApplicationId,
                              atoms_.kdeDesktopFile,
                              xcb_atom_t{XCB_ATOM_WM_CLASS},
                              xcb_atom_t{XCB_ATOM_WM_CLIENT_MACHINE},
                              xcb_atom_t{XCB_ATOM_WM_HINTS},
                              xcb_atom_t{XCB_ATOM_WM_TRANSIENT_FOR}};
    if (std::ranges::find(relevant, event.atom) != relevant.end()) {
        changedWindows_.insert(event.window);
        readAgain();
    }
}

void X11DesktopMonitor::readAgain() {
    if (isReading_ || !isAnythingChanged()) {
        return;
    }
    if (!pendingSnapshots_.empty()) {
        limit_.noteUnlimited();
    } else if (!isRootChanged_ && !mayReadNow()) {
        return;
    }
    isReading_ = true;
    isRootChanged_ = false;
    const X11RootRequests requests(events_.get(), events_.root(), atoms_);
    events_.whenAnswered([this, requests] { readWindows(requests.collect(events_.get(), atoms_)); });
}

bool X11DesktopMonitor::mayReadNow() {
    if (limitEnd_) {
        return false;
    }
    const auto rest = limit_.begin();
    if (rest > Seconds::zero()) {
        limitEnd_ = mainLoop_.after(rest, [this] {
            limitEnd_.reset();
            readAgain();
        });
    }
    return rest <= Seconds::zero();
}

void X11DesktopMonitor::readWindows(const X11RootFacts& root) {
    const auto check = requestManagerCheck(root);
    // Shared only because a std::function must be copyable.
    const auto batch = std::make_shared<X11WindowBatch>(events_.get(), root, atoms_, owners_, windowsToRead(root));
    events_.whenAnswered([this, root, check, batch] {
        auto windows = batch->collect();
        isReading_ = false;
        const auto destroyed = std::exchange(destroyedMeanwhile_, {});
        std::erase_if(windows, [&](const auto& window) { return destroyed.contains(window.id); });
        // A new window may have the XID of a destroyed one and be listed but not known.
        isRootChanged_ = isRootChanged_ || !destroyed.empty();
        applyReading(root, check, std::move(windows));
        auto ready = takeReadySnapshots();
        readAgain();
        for (auto& snapshot : ready) {
            finish(std::move(snapshot));
        }
    });
}

void X11DesktopMonitor::applyReading(X11RootFacts root, const X11ManagerCheck::Requests& check,
                                     std::vector<X11WindowFacts> windows) {
    const auto manager = managerCheck_.collect(events_.get(), check);
    publisher_.settle(root, manager);
    model_.apply(root, manager != XCB_WINDOW_NONE, std::move(windows));
}

/// The listed windows that are new or have changed. Their events are selected before they are read, so that no change
/// is missed.
std::vector<xcb_window_t> X11DesktopMonitor::windowsToRead(const X11RootFacts& root) {
    const auto changed = std::exchange(changedWindows_, {});
    std::vector<xcb_window_t> windows;
    if (!root.stacking) {
        std::ranges::copy_if(changed, std::back_inserter(windows),
                             [&](xcb_window_t window) { return model_.find(window) != nullptr; });
    } else {
        // Which property says that a window is minimised depends on this.
        const bool readsAll = std::exchange(supportsHiddenState_, root.supportsHiddenState) != root.supportsHiddenState;
        std::ranges::copy_if(*root.stacking, std::back_inserter(windows), [&](xcb_window_t window) {
            return readsAll || changed.contains(window) || model_.find(window) == nullptr;
        });
    }
    for (const auto window : windows) {
        // Known windows are selected again, because an XID may belong to a new window by now.
        events_.watch(window);
        changedParts_.erase(window);
    }
    return windows;
}

X11ManagerCheck::Requests X11DesktopMonitor::requestManagerCheck(const X11RootFacts& root) {
    events_.watch(root.supportingWmCheck);
    return managerCheck_.request(events_.get(), root, atoms_);
}

void X11DesktopMonitor::takeSnapshot(std::function<void(X11DesktopSnapshot)> handler) {
    auto asked = requestPassingFacts({});
    std::unordered_set<xcb_window_t> placed;
    for (const auto& request : asked) {
        placed.insert(request.window());
    }
    askPassingFacts(std::move(asked), [this, handler = std::move(handler), placed = std::move(placed)]() mutable {
        // All events from before the call have been handled by now. The present reading may have begun before one of
        // them; then the next one covers it.
        const int readings = (isReading_ ? 1 : 0) + (isAnythingChanged() ? 1 : 0);
        PendingSnapshot snapshot{std::move(handler), std::move(placed), readings, 1};
        if (readings == 0) {
            finish(std::move(snapshot));
        } else {
            pendingSnapshots_.push_back(std::move(snapshot));
            readAgain();
        }
    });
}

std::vector<X11DesktopMonitor::PendingSnapshot> X11DesktopMonitor::takeReadySnapshots() {
    std::vector<PendingSnapshot> ready;
    for (auto& snapshot : std::exchange(pendingSnapshots_, {})) {
        --snapshot.readingsLeft;
        snapshot.roundTrips += roundTripsOfReading;
        // The reading that has ended may have covered what the next one was to read.
        const bool isReady = snapshot.readingsLeft == 0 || !isAnythingChanged();
        (isReady ? ready : pendingSnapshots_).push_back(std::move(snapshot));
    }
    return ready;
}

void X11DesktopMonitor::finish(PendingSnapshot snapshot) {
    const auto hand = [this](const PendingSnapshot& finished) {
        auto copy = model_.snapshot();
        copy.roundTrips = finished.roundTrips;
        finished.handler(std::move(copy));
    };
    auto asked = requestPassingFacts(snapshot.placed);
    // Another snapshot may have asked for what had changed before this one, and have no answer yet.
    if (asked.empty() && passingAnswersToCome_ == 0) {
        hand(snapshot);
        return;
    }
    ++snapshot.roundTrips;
    askPassingFacts(std::move(asked), [hand, snapshot = std::move(snapshot)] { hand(snapshot); });
}

void X11DesktopMonitor::askPassingFacts(std::vector<X11PassingRequests> requests, std::function<void()> then) {
    ++passingAnswersToCome_;
    events_.whenAnswered([this, requests = std::move(requests), then = std::move(then)] {
        --passingAnswersToCome_;
        for (const auto& request : requests) {
            model_.refresh(request.window(), request.collect(events_.get(), atoms_));
        }
        then();
    });
}

std::vector<X11PassingRequests> X11DesktopMonitor::requestPassingFacts(const std::unordered_set<xcb_window_t>& placed) {
    const auto changed = std::exchange(changedParts_, {});
    std::vector<X11PassingRequests> requests;
    const auto request = [&](xcb_window_t window, std::uint8_t parts) {
        requests.emplace_back(events_.get(), window, events_.root(), atoms_, parts, !placed.contains(window));
    };
    for (const auto& [window, parts] : changed) {
        if (model_.find(window) != nullptr) {
            request(window, parts);
        } else if (isReading_) {
            // It may be a window that is being read for the first time.
            changedParts_.emplace(window, parts);
        }
    }
    for (const auto window : model_.order()) {
        if (!placed.contains(window) && !changed.contains(window)) {
            request(window, 0);
        }
    }
    return requests;
}

void X11DesktopMonitor::expectActive(xcb_window_t window, X11DesktopModel::Path path) {
    model_.expectActive(window, path);
    expectation_ = mainLoop_.after(activationGrace, [this] { model_.stopExpectingActive(); });
}

void X11DesktopMonitor::stopExpectingActive() {
    expectation_.reset();
    model_.stopExpectingActive();
}

}  // namespace ferrowyn

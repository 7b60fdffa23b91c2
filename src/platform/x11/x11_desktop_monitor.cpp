#include "platform/x11/x11_desktop_monitor.h"

#include <xcb/randr.h>

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

namespace {

/// Longer than a manager needs for an activation, shorter than the time until the user's next one.
constexpr Seconds activationGrace = std::chrono::milliseconds(300);

/// The event mask for the root, the listed windows and the manager's check window. It is one mask, because selecting
/// again replaces the earlier mask and the check window may also be a listed window or the root.
constexpr std::uint32_t windowEventMask = XCB_EVENT_MASK_PROPERTY_CHANGE | XCB_EVENT_MASK_STRUCTURE_NOTIFY;

/// The monitor reads a window because it has changed, so no earlier facts are reused.
const X11WindowBatch::KnownWindows nothingKnown;

}  // namespace

X11DesktopMonitor::X11DesktopMonitor(MainLoop& mainLoop, std::unique_ptr<X11Connection> connection,
                                     const X11Atoms& atoms, const X11ApplicationDirectory& directory,
                                     X11FocusHistory& history, std::function<void()> onConnectionLost)
    : mainLoop_(mainLoop),
      atoms_(atoms),
      model_(directory, history),
      connection_(
          std::move(connection), [this](const xcb_generic_event_t& event) { handleEvent(event); },
          std::move(onConnectionLost)),
      owners_(connection_.connection()),
      titleChanges_(mainLoop, [this](xcb_window_t window) { model_.noteTitleChanged(window); }) {
    subscribeToRoot();
    readFirstTime();
}

void X11DesktopMonitor::subscribeToRoot() {
    auto* const xcb = connection_.get();
    selectEvents(connection_.root());

    clockWindow_ = xcb_generate_id(xcb);
    const std::array<std::uint32_t, 2> values{1, XCB_EVENT_MASK_PROPERTY_CHANGE};
    xcb_create_window(xcb, 0, clockWindow_, connection_.root(), -1, -1, 1, 1, 0, XCB_WINDOW_CLASS_INPUT_ONLY,
                      XCB_COPY_FROM_PARENT, XCB_CW_OVERRIDE_REDIRECT | XCB_CW_EVENT_MASK, values.data());
    xcb_change_property(xcb, XCB_PROP_MODE_APPEND, clockWindow_, atoms_.netWmName, atoms_.utf8String, 8, 0, nullptr);

    const auto* const randr = xcb_get_extension_data(xcb, &xcb_randr_id);
    hasRandr_ = randr != nullptr && randr->present != 0;
    if (hasRandr_) {
        randrFirstEvent_ = randr->first_event;
        xcb_randr_select_input(xcb, connection_.root(),
                               XCB_RANDR_NOTIFY_MASK_SCREEN_CHANGE | XCB_RANDR_NOTIFY_MASK_CRTC_CHANGE);
    }
}

void X11DesktopMonitor::readFirstTime() {
    const auto root = X11RootRequests(connection_.get(), connection_.root(), atoms_).collect(connection_.get(), atoms_);
    const auto check = requestManagerCheck(root);
    auto answer = X11WindowBatch(connection_.get(), root, atoms_, owners_, windowsToRead(root),
                                 X11WindowBatch::Fallbacks::atOnceWithoutTitles, nothingKnown)
                      .collect();
    applyReading(root, check, std::move(answer.windows));
}

void X11DesktopMonitor::handleEvent(const xcb_generic_event_t& event) {
    const auto type = event.response_type;
    if (type == XCB_PROPERTY_NOTIFY) {
        handleProperty(reinterpret_cast<const xcb_property_notify_event_t&>(event));
    } else if (type == XCB_DESTROY_NOTIFY) {
        handleDestroyed(reinterpret_cast<const xcb_destroy_notify_event_t&>(event).window);
    } else if (hasRandr_ && (type == randrFirstEvent_ + XCB_RANDR_SCREEN_CHANGE_NOTIFY ||
                             type == randrFirstEvent_ + XCB_RANDR_NOTIFY)) {
        screenChanges_.send(true);
    }
    // Errors concern windows that were destroyed before a request reached the server; they are ignored.
}

void X11DesktopMonitor::handleDestroyed(xcb_window_t window) {
    if (isReading_) {
        destroyedMeanwhile_.insert(window);
    }
    changedWindows_.erase(window);
    if (model_.find(window) != nullptr) {
        // Removed at once: the manager's list follows later, and by then a new window may have the same XID.
        windowReadings_.send({window});
        model_.forget(window);
        return;
    }
    // It may be the manager's check window, and then the manager has ended.
    isRootChanged_ = true;
    readAgain();
}

void X11DesktopMonitor::handleProperty(const xcb_property_notify_event_t& event) {
    latestServerTime_ = std::max(event.time, xcb_timestamp_t{1});
    if (event.window == connection_.root()) {
        const std::array relevant{atoms_.netClientListStacking, atoms_.netClientList,        atoms_.netActiveWindow,
                                  atoms_.netCurrentDesktop,     atoms_.netSupportingWmCheck, atoms_.netSupported};
        if (std::ranges::find(relevant, event.atom) != relevant.end()) {
            isRootChanged_ = true;
            readAgain();
        }
        return;
    }
    if (event.atom == atoms_.netWmName || event.atom == XCB_ATOM_WM_NAME) {
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
                              xcb_atom_t{XCB_ATOM_WM_HINTS},
                              xcb_atom_t{XCB_ATOM_WM_TRANSIENT_FOR}};
    if (event.window != clockWindow_ && std::ranges::find(relevant, event.atom) != relevant.end()) {
        changedWindows_.insert(event.window);
        readAgain();
    }
}

void X11DesktopMonitor::readAgain() {
    if (isReading_ || !(isRootChanged_ || !changedWindows_.empty())) {
        return;
    }
    isReading_ = true;
    isRootChanged_ = false;
    const X11RootRequests requests(connection_.get(), connection_.root(), atoms_);
    connection_.whenAnswered([this, requests] { readWindows(requests.collect(connection_.get(), atoms_)); });
}

void X11DesktopMonitor::readWindows(const X11RootFacts& root) {
    const auto check = requestManagerCheck(root);
    const auto windows = windowsToRead(root);
    auto batch = std::make_shared<X11WindowBatch>(connection_.get(), root, atoms_, owners_, windows,
                                                  X11WindowBatch::Fallbacks::atOnceWithoutTitles, nothingKnown);
    connection_.whenAnswered([this, root, check, batch, windows] {
        auto answer = batch->collect();
        isReading_ = false;
        const auto destroyed = std::exchange(destroyedMeanwhile_, {});
        std::erase_if(answer.windows, [&](const auto& window) { return destroyed.contains(window.id); });
        // A new window may have the XID of a destroyed one and be listed but not known.
        isRootChanged_ = isRootChanged_ || !destroyed.empty();
        // Sent before the change is announced: its observers start a reading of the whole desktop.
        windowReadings_.send(windows);
        applyReading(root, check, std::move(answer.windows));
        readAgain();
    });
}

void X11DesktopMonitor::applyReading(X11RootFacts root, const X11ManagerCheck::Requests& check,
                                     std::vector<X11WindowFacts> windows) {
    const auto manager = managerCheck_.collect(connection_.get(), check);
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
        std::ranges::copy_if(*root.stacking, std::back_inserter(windows), [&](xcb_window_t window) {
            return changed.contains(window) || model_.find(window) == nullptr;
        });
    }
    // Known windows are selected again, because an XID may belong to a new window by now.
    std::ranges::for_each(windows, [this](xcb_window_t window) { selectEvents(window); });
    return windows;
}

void X11DesktopMonitor::selectEvents(xcb_window_t window) {
    xcb_change_window_attributes(connection_.get(), window, XCB_CW_EVENT_MASK, &windowEventMask);
}

X11ManagerCheck::Requests X11DesktopMonitor::requestManagerCheck(const X11RootFacts& root) {
    if (root.supportingWmCheck != XCB_WINDOW_NONE) {
        selectEvents(root.supportingWmCheck);
    }
    return managerCheck_.request(connection_.get(), root, atoms_);
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

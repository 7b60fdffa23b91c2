#include "platform/x11/x11_window_inventory.h"

#include <cassert>
#include <utility>

namespace ferrowyn {

X11DesktopSnapshot X11DesktopSnapshots::take() {
    assert(!mainLoop_.isMainThread());
    const auto request = std::make_shared<Request>();
    mainLoop_.post(life_.guard([this, request] {
        monitor_.takeSnapshot(life_.guard([this, request](X11DesktopSnapshot snapshot) {
            const std::scoped_lock lock(mutex_);
            request->answer = std::move(snapshot);
            answered_.notify_all();
        }));
    }));
    std::unique_lock lock(mutex_);
    answered_.wait(lock, [&] { return end_ || request->answer; });
    if (end_) {
        return X11DesktopSnapshot{.isValid = *end_ == End::programEnds};
    }
    return std::move(*request->answer);
}

void X11DesktopSnapshots::close(End end) {
    const std::scoped_lock lock(mutex_);
    end_ = end_.value_or(end);
    answered_.notify_all();
}

X11InventoryReading::X11InventoryReading(X11DesktopSnapshot snapshot, double scale,
                                         const X11ApplicationDirectory& directory)
    : snapshot_(std::move(snapshot)), scale_(scale) {
    for (const auto& window : snapshot_.windows) {
        windowsById_.emplace(window.id, &window);
    }
    std::vector<Pid> order;
    for (const auto& window : snapshot_.windows) {
        auto& windows = windowsByPid_[window.pid];
        if (windows.empty()) {
            order.push_back(window.pid);
        }
        windows.push_back(&window);
    }
    applications_.reserve(order.size());
    for (const auto pid : order) {
        applications_.push_back(directory.describe(pid, windowsByPid_.at(pid)));
    }
    findBlockedWindows();
}

void X11InventoryReading::findBlockedWindows() {
    std::unordered_map<xcb_window_t, const X11WindowFacts*> dialogsOfGroups;
    for (const auto& window : snapshot_.windows) {
        if (!window.isModal) {
            continue;
        }
        // A dialog for the root window, or for none, blocks all windows of its group.
        const bool isForGroup = window.transientFor == XCB_WINDOW_NONE || window.transientFor == snapshot_.root;
        if (!isForGroup) {
            dialogs_.emplace(window.transientFor, &window);
        } else if (window.group != XCB_WINDOW_NONE) {
            dialogsOfGroups.emplace(window.group, &window);
        }
    }
    for (const auto& window : snapshot_.windows) {
        const auto found = dialogsOfGroups.find(window.group);
        if (found == dialogsOfGroups.end() || found->second == &window) {
            continue;
        }
        // A dialog does not block the windows that it has opened itself.
        const auto* ancestor = &window;
        for (int depth = 0; depth < deepestDialogNesting && ancestor != nullptr && ancestor != found->second; ++depth) {
            ancestor = find(ancestor->transientFor);
        }
        if (ancestor != found->second) {
            dialogs_.emplace(window.id, found->second);
        }
    }
}

std::optional<ModalDialog> X11InventoryReading::blockerOf(xcb_window_t window) const {
    const X11WindowFacts* last = nullptr;
    auto next = dialogs_.find(window);
    for (int depth = 0; depth < deepestDialogNesting && next != dialogs_.end() && next->second->id != window; ++depth) {
        last = next->second;
        next = dialogs_.find(last->id);
    }
    return last == nullptr ? std::nullopt : std::optional(ModalDialog{last->id, X11Element::make(last->id), last->pid});
}

const X11WindowFacts* X11InventoryReading::find(xcb_window_t window) const {
    const auto found = windowsById_.find(window);
    return found == windowsById_.end() ? nullptr : found->second;
}

std::optional<Rect> X11InventoryReading::frameInPoints(const X11WindowFacts& window) const {
    if (!window.frame) {
        return std::nullopt;
    }
    const auto& frame = *window.frame;
    return Rect{frame.x / scale_, frame.y / scale_, frame.width / scale_, frame.height / scale_};
}

std::optional<std::vector<WindowServerEntry>> X11InventoryReading::windowList() const {
    if (!snapshot_.isValid) {
        return std::nullopt;
    }
    std::unordered_map<Pid, const RunningApplication*> applications;
    for (const auto& application : applications_) {
        applications.emplace(application.pid, &application);
    }
    std::vector<WindowServerEntry> entries;
    entries.reserve(snapshot_.windows.size());
    for (const auto& window : snapshot_.windows) {
        if (window.isDesktopElement()) {
            continue;
        }
        entries.push_back({.id = window.id,
                           .ownerName = applications.at(window.pid)->localizedName,
                           .isOnScreen = isOnScreen(window, snapshot_.currentDesktop),
                           .bounds = frameInPoints(window),
                           .alpha = window.opacity,
                           .layer = layerOf(window),
                           .ownerPid = window.pid});
    }
    return entries;
}

std::unordered_set<WindowId> X11InventoryReading::onScreenWindowIds() const {
    std::unordered_set<WindowId> ids;
    if (!snapshot_.isValid) {
        return ids;
    }
    for (const auto& window : snapshot_.windows) {
        if (!window.isDesktopElement() && isOnScreen(window, snapshot_.currentDesktop)) {
            ids.insert(window.id);
        }
    }
    return ids;
}

std::vector<RunningApplication> X11InventoryReading::runningApplications() const {
    return applications_;
}

std::optional<AccessibleApplication> X11InventoryReading::windowsOf(Pid pid, Seconds /*messagingTimeout*/) const {
    const auto found = windowsByPid_.find(pid);
    if (found == windowsByPid_.end()) {
        return std::nullopt;
    }
    AccessibleApplication application;
    // While an activation is under way, the active window is newer than what has been announced, so it wins.
    const auto lastActive = snapshot_.lastActive.find(pid);
    auto focused = lastActive == snapshot_.lastActive.end() ? std::nullopt : std::optional(lastActive->second);
    for (const auto* const window : found->second) {
        if (window->isDesktopElement()) {
            continue;
        }
        if (window->id == snapshot_.activeWindow) {
            focused = window->id;
        }
        const auto frame = frameInPoints(*window);
        application.windows.push_back({.element = X11Element::make(window->id),
                                       .windowNumber = window->id,
                                       .subrole = subroleOf(*window),
                                       .title = window->title,
                                       .isMinimized = window->isHidden,
                                       .isFullScreen = window->isFullScreen,
                                       .position = frame ? std::optional(Point{frame->x, frame->y}) : std::nullopt,
                                       .size = frame ? std::optional(Size{frame->width, frame->height}) : std::nullopt,
                                       .blockedBy = blockerOf(window->id)});
    }
    if (focused) {
        application.focusedWindow = X11Element::make(*focused);
    }
    return application;
}

std::unique_ptr<InventoryReading> X11WindowInventory::beginReading() const {
    return std::make_unique<X11InventoryReading>(snapshots_.take(), scale_.load(), directory_);
}

std::optional<std::vector<std::optional<WindowId>>> X11WindowInventory::windowOrder() const {
    const auto order = model_.order();
    return std::vector<std::optional<WindowId>>(order.begin(), order.end());
}

std::optional<WindowId> X11WindowInventory::focusedWindowNumber(Pid pid, Seconds /*messagingTimeout*/) const {
    return model_.lastActiveOf(pid);
}

}  // namespace ferrowyn

#include "platform/x11/x11_window_inventory.h"

#include <utility>

namespace ferrowyn {

X11DesktopReader::X11DesktopReader(std::unique_ptr<X11Connection> connection, const X11Atoms& atoms)
    : connection_(std::move(connection)), atoms_(atoms), owners_(*connection_) {}

X11DesktopSnapshot X11DesktopReader::read() {
    const std::scoped_lock lock(mutex_);
    auto* const connection = connection_->get();
    dropForgotten();
    X11DesktopSnapshot snapshot;
    snapshot.root = X11RootRequests(connection, connection_->root(), atoms_).collect(connection, atoms_);
    ++snapshot.roundTrips;
    settleList(snapshot);
    if (snapshot.root.stacking) {
        latestStacking_.assign(snapshot.root.stacking->rbegin(), snapshot.root.stacking->rend());
    }
    auto answer = X11WindowBatch(connection, snapshot.root, atoms_, owners_, latestStacking_,
                                 X11WindowBatch::Fallbacks::whenNeeded, known_)
                      .collect();
    snapshot.windows = std::move(answer.windows);
    snapshot.roundTrips += answer.roundTrips;
    snapshot.isValid = connection_->isAlive();
    keep(snapshot.windows);
    return snapshot;
}

void X11DesktopReader::settleList(X11DesktopSnapshot& snapshot) {
    auto& root = snapshot.root;
    auto manager = root.supportingWmCheck;
    if (!root.stacking) {
        // Only a missing list makes it necessary to know whether the manager still runs; it costs a round trip.
        auto* const connection = connection_->get();
        manager = managerCheck_.collect(connection, managerCheck_.request(connection, root, atoms_));
        ++snapshot.roundTrips;
    }
    publisher_.settle(root, manager);
}

void X11DesktopReader::keepLastingFacts() {
    const std::scoped_lock lock(mutex_);
    keepsLastingFacts_ = true;
}

void X11DesktopReader::forget(const std::vector<xcb_window_t>& windows) {
    const std::scoped_lock lock(forgottenMutex_);
    forgotten_.insert(forgotten_.end(), windows.begin(), windows.end());
}

void X11DesktopReader::dropForgotten() {
    const std::scoped_lock lock(forgottenMutex_);
    for (const auto window : forgotten_) {
        known_.erase(window);
    }
    forgotten_.clear();
}

void X11DesktopReader::keep(const std::vector<X11WindowFacts>& windows) {
    known_.clear();
    if (keepsLastingFacts_) {
        for (const auto& window : windows) {
            known_.emplace(window.id, window);
        }
    }
}

X11InventoryReading::X11InventoryReading(X11DesktopSnapshot snapshot, double scale,
                                         const X11ApplicationDirectory& directory, const X11FocusHistory& history)
    : snapshot_(std::move(snapshot)), scale_(scale), history_(history) {
    for (const auto& window : snapshot_.windows) {
        windowsById_.emplace(window.id, &window);
    }
    std::vector<Pid> order;
    for (auto& window : snapshot_.windows) {
        window.pid = directory.numberFor(window, [this](xcb_window_t other) { return find(other); });
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
        const bool isForGroup = window.transientFor == XCB_WINDOW_NONE || window.transientFor == snapshot_.root.root;
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
                           .isOnScreen = isOnScreen(window, snapshot_.root.currentDesktop),
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
        if (!window.isDesktopElement() && isOnScreen(window, snapshot_.root.currentDesktop)) {
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
    // The reading is newer than the history, so its active window wins.
    auto focused = history_.lastActiveOf(pid);
    for (const auto* const window : found->second) {
        if (window->isDesktopElement()) {
            continue;
        }
        if (window->id == snapshot_.root.activeWindow) {
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
    return std::make_unique<X11InventoryReading>(reader_.read(), scale_.load(), directory_, history_);
}

std::optional<std::vector<std::optional<WindowId>>> X11WindowInventory::windowOrder() const {
    const auto order = model_.order();
    return std::vector<std::optional<WindowId>>(order.begin(), order.end());
}

std::optional<WindowId> X11WindowInventory::focusedWindowNumber(Pid pid, Seconds /*messagingTimeout*/) const {
    return model_.lastActiveOf(pid);
}

}  // namespace ferrowyn

#include "platform/x11/x11_desktop_reader.h"

#include <utility>

#include "platform/x11/x11_window_batch.h"

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
        // Whether that manager still runs matters only now, and costs a round trip.
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

}  // namespace ferrowyn

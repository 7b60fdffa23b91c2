#include "platform/x11/x11_desktop_reader.h"

#include <utility>

#include "platform/x11/x11_window_batch.h"

namespace ferrowyn {

X11DesktopReader::X11DesktopReader(std::unique_ptr<X11Connection> connection, const X11Atoms& atoms)
    : connection_(std::move(connection)), atoms_(atoms), owners_(*connection_) {}

X11DesktopSnapshot X11DesktopReader::read() {
    const std::scoped_lock lock(mutex_);
    auto* const connection = connection_->get();
    X11DesktopSnapshot snapshot;
    snapshot.root = X11RootRequests(connection, connection_->root(), atoms_).collect(connection, atoms_);
    ++snapshot.roundTrips;
    if (snapshot.root.stacking) {
        latestStacking_.assign(snapshot.root.stacking->rbegin(), snapshot.root.stacking->rend());
    }
    auto answer = X11WindowBatch(connection, snapshot.root, atoms_, owners_, latestStacking_,
                                 X11WindowBatch::Fallbacks::whenNeeded)
                      .collect();
    snapshot.windows = std::move(answer.windows);
    snapshot.roundTrips += answer.roundTrips;
    snapshot.isValid = connection_->isAlive();
    return snapshot;
}

}  // namespace ferrowyn

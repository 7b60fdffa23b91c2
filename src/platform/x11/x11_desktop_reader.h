#pragma once

#include <memory>
#include <mutex>
#include <vector>

#include "platform/x11/x11_atoms.h"
#include "platform/x11/x11_connection.h"
#include "platform/x11/x11_desktop_snapshot.h"
#include "platform/x11/x11_owners.h"
#include "platform/x11/x11_window_batch.h"

namespace ferrowyn {

/// Reads the whole desktop over a connection of its own, in at most three round trips however many windows there are:
/// what the manager publishes, then everything about every window, then the old forms of title and process for the few
/// windows that have no other. Any thread; a second reader waits for the first.
class X11DesktopReader {
public:
    /// The connection is this reader's alone; the atoms outlive it.
    X11DesktopReader(std::unique_ptr<X11Connection> connection, const X11Atoms& atoms);

    [[nodiscard]] X11DesktopSnapshot read();

    /// From now on what rarely changes about a window (its owner, its kind, its application) is kept from one reading
    /// to the next, which halves the requests. Whoever calls this sees to it that `forget` is.
    void keepLastingFacts();
    /// Some of that has changed, or may have, by the time of this call. Waits for no reading.
    void forget(const std::vector<xcb_window_t>& windows);

private:
    void settleList(X11DesktopSnapshot& snapshot);
    void dropForgotten();
    void keep(const std::vector<X11WindowFacts>& windows);

    std::mutex mutex_;
    std::unique_ptr<X11Connection> connection_;
    const X11Atoms& atoms_;
    X11Owners owners_;
    X11ManagerCheck managerCheck_;
    X11ListPublisher publisher_;
    /// The windows of the latest list. While a manager is being replaced there is no list for a moment, but the windows
    /// stay; the next list decides.
    std::vector<xcb_window_t> latestStacking_;
    bool keepsLastingFacts_ = false;
    X11WindowBatch::KnownWindows known_;

    /// Guards the list only. What is put in it during a reading is still there for the next one, as the reading may
    /// have asked too early.
    std::mutex forgottenMutex_;
    std::vector<xcb_window_t> forgotten_;
};

}  // namespace ferrowyn

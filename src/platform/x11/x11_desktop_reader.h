#pragma once

#include <memory>
#include <mutex>
#include <vector>

#include "platform/x11/x11_atoms.h"
#include "platform/x11/x11_connection.h"
#include "platform/x11/x11_desktop_snapshot.h"
#include "platform/x11/x11_owners.h"

namespace ferrowyn {

/// Reads the whole desktop over a connection of its own, in at most three round trips however many windows there are:
/// what the manager publishes, then everything about every window, then the old forms of title and process for the few
/// windows that have no other. Any thread; a second reader waits for the first.
class X11DesktopReader {
public:
    /// The connection is this reader's alone; the atoms outlive it.
    X11DesktopReader(std::unique_ptr<X11Connection> connection, const X11Atoms& atoms);

    [[nodiscard]] X11DesktopSnapshot read();

private:
    std::mutex mutex_;
    std::unique_ptr<X11Connection> connection_;
    const X11Atoms& atoms_;
    X11Owners owners_;
    /// The windows of the latest list. While a manager is being replaced there is no list for a moment, but the windows
    /// stay; the next list decides.
    std::vector<xcb_window_t> latestStacking_;
};

}  // namespace ferrowyn

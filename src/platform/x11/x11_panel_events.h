#pragma once

#include <functional>
#include <memory>
#include <optional>

#include "core/published.h"
#include "platform/x11/x11_event_connection.h"

namespace ferrowyn {

/// The connection on which the panel's side of the adapter listens: screens, compositor, clicks elsewhere. One of its
/// own, so that its event masks on the root window are nobody else's business. Main thread.
class X11PanelEvents {
public:
    /// `connection` is not null.
    explicit X11PanelEvents(std::unique_ptr<X11Connection> connection);

    [[nodiscard]] X11Connection& connection() { return events_.connection(); }
    [[nodiscard]] xcb_connection_t* get() const { return events_.get(); }
    [[nodiscard]] xcb_window_t root() const { return events_.root(); }
    void flush() { events_.flush(); }

    [[nodiscard]] Subscription observe(std::function<void(const xcb_generic_event_t&)> handler) const {
        return received_.subscribe(std::move(handler));
    }

    /// Calls back once everything sent so far is answered, so that collecting the answers does not wait.
    void whenAnswered(std::function<void()> callback) { events_.whenAnswered(std::move(callback)); }

    /// Has the server tell when the selection's owner changes. Returns the number of the first event of the extension
    /// that tells it; nothing where the server lacks that. Only sent.
    [[nodiscard]] std::optional<std::uint8_t> listenToSelection(xcb_atom_t selection);

    /// Whether changes among the windows on the root are told as well: much traffic, so only while the panel is shown.
    void setHearsStacking(bool hearsStacking);

private:
    Subject<xcb_generic_event_t> received_;
    X11EventConnection events_;
};

}  // namespace ferrowyn

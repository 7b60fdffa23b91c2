#pragma once

#include <QObject>
#include <QSocketNotifier>
#include <deque>
#include <functional>
#include <memory>
#include <optional>

#include "core/published.h"
#include "platform/x11/x11_connection.h"

namespace ferrowyn {

/// The connection whose events arrive on the main loop. Main thread; it never waits for the server: what needs an
/// answer sends its requests and is called back when the answers have come. Events that another client has sent are
/// dropped, except messages.
class X11EventConnection {
public:
    using EventHandler = std::function<void(const xcb_generic_event_t&)>;

    X11EventConnection(std::unique_ptr<X11Connection> connection, EventHandler onEvent,
                       std::function<void()> onConnectionLost);
    ~X11EventConnection();
    X11EventConnection(const X11EventConnection&) = delete;
    X11EventConnection& operator=(const X11EventConnection&) = delete;

    [[nodiscard]] X11Connection& connection() { return *connection_; }
    [[nodiscard]] xcb_connection_t* get() const { return connection_->get(); }
    [[nodiscard]] xcb_window_t root() const { return connection_->root(); }

    /// Calls back once everything sent so far is answered, so that collecting those answers does not wait. Dropped
    /// when the connection is lost.
    void whenAnswered(std::function<void()> callback);

    /// Puts what was sent on its way now.
    void flush();

private:
    struct Fence {
        unsigned int sequence = 0;
        std::function<void()> callback;
    };

    void drain();
    bool deliverAnswered();
    void noticeLoss();

    std::unique_ptr<X11Connection> connection_;
    EventHandler onEvent_;
    std::function<void()> onConnectionLost_;
    std::deque<Fence> fences_;
    bool isDraining_ = false;
    /// What belongs to the toolkit's loop comes last, so that it goes first.
    QSocketNotifier notifier_;
    QMetaObject::Connection beforeWaiting_;
};

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

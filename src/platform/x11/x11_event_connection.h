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

/// A connection whose events are delivered on the main loop. It never waits for the server: a caller sends requests and
/// gets a callback when the replies have arrived. Events sent by other clients are dropped, except client messages.
/// Main thread.
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

    /// Flushes, and calls `callback` when the replies to all requests sent so far have arrived: collecting them does
    /// not wait then. Not called when the connection is lost first.
    void whenAnswered(std::function<void()> callback);

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
    /// Declared last, so that it is destroyed before the connection that it watches.
    QSocketNotifier notifier_;
    QMetaObject::Connection beforeWaiting_;
};

/// The connection shared by the panel, the screens, the compositor, XSETTINGS and the pointer. It is separate from the
/// desktop monitor's, so that neither replaces the other's event mask on the root window. Main thread.
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

    /// See `X11EventConnection::whenAnswered`.
    void whenAnswered(std::function<void()> callback) { events_.whenAnswered(std::move(callback)); }

    /// Selects events for changes of the selection's owner. Returns the first event number of the XFIXES extension;
    /// nullopt when the server lacks it. Does not wait.
    [[nodiscard]] std::optional<std::uint8_t> listenToSelection(xcb_atom_t selection);

    /// Whether events about the root's child windows are selected too. They are many, so only while the panel is shown.
    void setSelectsStacking(bool selectsStacking);

private:
    Subject<xcb_generic_event_t> received_;
    X11EventConnection events_;
};

}  // namespace ferrowyn

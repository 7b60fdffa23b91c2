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

/// The main thread's connection, which all parts of the adapter on this thread share. Delivers its events on the main
/// loop. It waits for the server only at the first use of an extension: a caller sends requests and gets a callback
/// when the replies have arrived. Events sent by other clients are dropped, except client messages. Main thread.
///
/// A client has one event mask for each window, so no part selects events by itself: `watch` selects the same events on
/// every window, and a handler looks at the window that an event is about. Only the windows that this program has made
/// on this connection have other masks.
class X11EventConnection {
public:
    using EventHandler = std::function<void(const xcb_generic_event_t&)>;

    /// Follows the root window's properties and structure, and the arrangement of the screens. `connection` is not
    /// null. `onConnectionLost` is called once.
    explicit X11EventConnection(std::unique_ptr<X11Connection> connection,
                                std::function<void()> onConnectionLost = nullptr);
    ~X11EventConnection();
    X11EventConnection(const X11EventConnection&) = delete;
    X11EventConnection& operator=(const X11EventConnection&) = delete;

    [[nodiscard]] X11Connection& connection() { return *connection_; }
    [[nodiscard]] xcb_connection_t* get() const { return connection_->get(); }
    [[nodiscard]] xcb_window_t root() const { return connection_->root(); }

    /// Calls the handler with every event of the connection. The event may be longer than its type says.
    [[nodiscard]] Subscription observe(EventHandler handler) const { return received_.subscribe(std::move(handler)); }

    /// Selects events for changes of the window's properties, size and mapping, and for its end. Sent with the next
    /// flush.
    void watch(xcb_window_t window);
    /// Whether events about the root's child windows are selected too. They are many, so only while the panel is shown.
    void setSelectsStacking(bool selectsStacking);
    /// Whether the event says that the arrangement of the screens has changed.
    [[nodiscard]] bool isScreenChange(const xcb_generic_event_t& event) const;
    /// Selects events for changes of the selection's owner. Returns the first event number of the XFIXES extension;
    /// nullopt when the server lacks it.
    [[nodiscard]] std::optional<std::uint8_t> listenToSelection(xcb_atom_t selection);

    /// Flushes, and calls `callback` when the replies to all requests sent so far have arrived: collecting them does
    /// not wait then. Events that the server has sent before these replies are delivered before the call. Not called
    /// when the connection is lost first.
    void whenAnswered(std::function<void()> callback);

    void flush();

private:
    struct Fence {
        unsigned int sequence = 0;
        std::function<void()> callback;
    };

    /// Delivers what has arrived, but leaves a part for the loop's next turn when there is very much.
    void drain();
    /// Returns how many events were delivered.
    int deliverEvents(xcb_generic_event_t* (*next)(xcb_connection_t*), int most);
    /// Returns how many callbacks were called and events delivered.
    int deliverAnswered();
    void noticeLoss();
    void selectOnRoot(bool selectsStacking);

    std::unique_ptr<X11Connection> connection_;
    std::function<void()> onConnectionLost_;
    Subject<xcb_generic_event_t> received_;
    std::optional<std::uint8_t> randrFirstEvent_;
    std::deque<Fence> fences_;
    bool isDraining_ = false;
    /// Declared last, so that it is destroyed before the connection that it watches.
    QSocketNotifier notifier_;
    QMetaObject::Connection beforeWaiting_;
};

}  // namespace ferrowyn

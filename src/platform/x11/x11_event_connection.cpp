#include "platform/x11/x11_event_connection.h"

#include <xcb/xcbext.h>
#include <xcb/xfixes.h>

#include <QAbstractEventDispatcher>
#include <utility>

#include "platform/x11/xcb_reply.h"

namespace ferrowyn {

X11EventConnection::X11EventConnection(std::unique_ptr<X11Connection> connection, EventHandler onEvent,
                                       std::function<void()> onConnectionLost)
    : connection_(std::move(connection)),
      onEvent_(std::move(onEvent)),
      onConnectionLost_(std::move(onConnectionLost)),
      notifier_(connection_->fileDescriptor(), QSocketNotifier::Read) {
    QObject::connect(&notifier_, &QSocketNotifier::activated, &notifier_, [this] { drain(); });
    // xcb may read events from the socket while it writes. The notifier does not report those, so the queue is also
    // read before the loop waits.
    beforeWaiting_ = QObject::connect(QAbstractEventDispatcher::instance(), &QAbstractEventDispatcher::aboutToBlock,
                                      &notifier_, [this] { drain(); });
}

X11EventConnection::~X11EventConnection() {
    QObject::disconnect(beforeWaiting_);
}

void X11EventConnection::whenAnswered(std::function<void()> callback) {
    // Replies come in the order of the requests. When the reply to this cheap request is there, so are the others.
    fences_.push_back({xcb_get_input_focus(get()).sequence, std::move(callback)});
    flush();
}

void X11EventConnection::flush() {
    xcb_flush(get());
}

void X11EventConnection::drain() {
    if (isDraining_ || !notifier_.isEnabled()) {
        return;
    }
    isDraining_ = true;
    bool hasProgress = true;
    bool hasDelivered = false;
    while (hasProgress) {
        hasProgress = false;
        while (const XcbReply<xcb_generic_event_t> event{xcb_poll_for_event(get())}) {
            hasProgress = true;
            if (!isSentByClient(*event) || typeOf(*event) == XCB_CLIENT_MESSAGE) {
                onEvent_(*event);
            }
        }
        hasProgress = deliverAnswered() || hasProgress;
        hasDelivered = hasDelivered || hasProgress;
    }
    isDraining_ = false;
    if (hasDelivered) {
        // The loop may have decided how long to wait before the handlers ran. They may have started timers since.
        QAbstractEventDispatcher::instance()->wakeUp();
    }
    if (!connection_->isAlive()) {
        noticeLoss();
    }
}

bool X11EventConnection::deliverAnswered() {
    bool hasDelivered = false;
    while (!fences_.empty()) {
        void* reply = nullptr;
        xcb_generic_error_t* error = nullptr;
        if (xcb_poll_for_reply(get(), fences_.front().sequence, &reply, &error) == 0) {
            break;
        }
        const XcbReply<void> ownedReply(reply);
        const XcbReply<xcb_generic_error_t> ownedError(error);
        if (!connection_->isAlive()) {
            fences_.clear();
            break;
        }
        const auto callback = std::move(fences_.front().callback);
        fences_.pop_front();
        hasDelivered = true;
        callback();
    }
    return hasDelivered;
}

void X11EventConnection::noticeLoss() {
    // A closed socket is always readable, so the notifier would fire without end.
    notifier_.setEnabled(false);
    fences_.clear();
    if (const auto handler = std::exchange(onConnectionLost_, nullptr)) {
        handler();
    }
}

X11PanelEvents::X11PanelEvents(std::unique_ptr<X11Connection> connection)
    : events_(
          std::move(connection), [this](const xcb_generic_event_t& event) { received_.send(event); }, [] {}) {
    setSelectsStacking(false);
}

std::optional<std::uint8_t> X11PanelEvents::listenToSelection(xcb_atom_t selection) {
    const auto* const extension = xcb_get_extension_data(get(), &xcb_xfixes_id);
    if (extension == nullptr || extension->present == 0) {
        return std::nullopt;
    }
    // The server refuses other requests of the extension until the client has sent its version.
    const auto version = xcb_xfixes_query_version(get(), XCB_XFIXES_MAJOR_VERSION, XCB_XFIXES_MINOR_VERSION);
    xcb_discard_reply(get(), version.sequence);
    xcb_xfixes_select_selection_input(get(), root(), selection,
                                      XCB_XFIXES_SELECTION_EVENT_MASK_SET_SELECTION_OWNER |
                                          XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_WINDOW_DESTROY |
                                          XCB_XFIXES_SELECTION_EVENT_MASK_SELECTION_CLIENT_CLOSE);
    return extension->first_event;
}

void X11PanelEvents::setSelectsStacking(bool selectsStacking) {
    const std::uint32_t mask = XCB_EVENT_MASK_PROPERTY_CHANGE | XCB_EVENT_MASK_STRUCTURE_NOTIFY |
                               (selectsStacking ? std::uint32_t{XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY} : 0U);
    xcb_change_window_attributes(get(), root(), XCB_CW_EVENT_MASK, &mask);
    events_.flush();
}

}  // namespace ferrowyn

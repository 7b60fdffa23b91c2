#include "platform/x11/x11_event_connection.h"

#include <xcb/randr.h>
#include <xcb/xcbext.h>
#include <xcb/xfixes.h>

#include <QAbstractEventDispatcher>
#include <limits>
#include <utility>

#include "platform/x11/xcb_reply.h"

namespace ferrowyn {
namespace {

constexpr std::uint32_t watchMask = XCB_EVENT_MASK_PROPERTY_CHANGE | XCB_EVENT_MASK_STRUCTURE_NOTIFY;

/// How many events are delivered before the loop gets to its other work. A millisecond's worth, and more than xcb reads
/// at once, so that its queue does not grow.
constexpr int eventsPerTurn = 1024;

}  // namespace

X11EventConnection::X11EventConnection(std::unique_ptr<X11Connection> connection,
                                       std::function<void()> onConnectionLost)
    : connection_(std::move(connection)),
      onConnectionLost_(std::move(onConnectionLost)),
      notifier_(connection_->fileDescriptor(), QSocketNotifier::Read) {
    QObject::connect(&notifier_, &QSocketNotifier::activated, &notifier_, [this] { drain(); });
    // xcb may read events from the socket while it writes. The notifier does not report those, so the queue is also
    // read before the loop waits.
    beforeWaiting_ = QObject::connect(QAbstractEventDispatcher::instance(), &QAbstractEventDispatcher::aboutToBlock,
                                      &notifier_, [this] { drain(); });
    selectOnRoot(false);
    const auto* const randr = xcb_get_extension_data(get(), &xcb_randr_id);
    if (randr != nullptr && randr->present != 0) {
        randrFirstEvent_ = randr->first_event;
        xcb_randr_select_input(get(), root(),
                               XCB_RANDR_NOTIFY_MASK_SCREEN_CHANGE | XCB_RANDR_NOTIFY_MASK_CRTC_CHANGE |
                                   XCB_RANDR_NOTIFY_MASK_OUTPUT_CHANGE);
    }
}

X11EventConnection::~X11EventConnection() {
    QObject::disconnect(beforeWaiting_);
}

void X11EventConnection::watch(xcb_window_t window) {
    const auto* const setup = xcb_get_setup(get());
    // Any client can name any window in a property, also one of ours, whose mask must stay.
    const bool isOurs = (window & ~setup->resource_id_mask) == setup->resource_id_base;
    if (!isOurs && window != root() && window != XCB_WINDOW_NONE) {
        xcb_change_window_attributes(get(), window, XCB_CW_EVENT_MASK, &watchMask);
    }
}

void X11EventConnection::setSelectsStacking(bool selectsStacking) {
    selectOnRoot(selectsStacking);
    flush();
}

void X11EventConnection::selectOnRoot(bool selectsStacking) {
    const std::uint32_t mask = watchMask | (selectsStacking ? std::uint32_t{XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY} : 0U);
    xcb_change_window_attributes(get(), root(), XCB_CW_EVENT_MASK, &mask);
}

bool X11EventConnection::isScreenChange(const xcb_generic_event_t& event) const {
    const auto type = typeOf(event);
    return randrFirstEvent_ &&
           (type == *randrFirstEvent_ + XCB_RANDR_SCREEN_CHANGE_NOTIFY || type == *randrFirstEvent_ + XCB_RANDR_NOTIFY);
}

std::optional<std::uint8_t> X11EventConnection::listenToSelection(xcb_atom_t selection) {
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
    int delivered = 0;
    bool hasProgress = true;
    while (hasProgress && delivered < eventsPerTurn) {
        const int events = deliverEvents(xcb_poll_for_event, eventsPerTurn - delivered);
        const int answers = deliverAnswered();
        hasProgress = events + answers > 0;
        delivered += events + answers;
    }
    isDraining_ = false;
    if (delivered > 0) {
        // The loop may have decided how long to wait before the handlers ran. They may have started timers since. And
        // there may be more events.
        QAbstractEventDispatcher::instance()->wakeUp();
    }
    if (!connection_->isAlive()) {
        noticeLoss();
    }
}

int X11EventConnection::deliverEvents(xcb_generic_event_t* (*next)(xcb_connection_t*), int most) {
    int delivered = 0;
    for (; delivered < most; ++delivered) {
        const XcbReply<xcb_generic_event_t> event{next(get())};
        if (!event) {
            break;
        }
        if (!isSentByClient(*event) || typeOf(*event) == XCB_CLIENT_MESSAGE) {
            received_.send(*event);
        }
    }
    return delivered;
}

int X11EventConnection::deliverAnswered() {
    int delivered = 0;
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
        // Looking for the reply may have read events from before it.
        delivered += 1 + deliverEvents(xcb_poll_for_queued_event, std::numeric_limits<int>::max());
        callback();
    }
    return delivered;
}

void X11EventConnection::noticeLoss() {
    // A closed socket is always readable, so the notifier would fire without end.
    notifier_.setEnabled(false);
    fences_.clear();
    if (const auto handler = std::exchange(onConnectionLost_, nullptr)) {
        handler();
    }
}

}  // namespace ferrowyn

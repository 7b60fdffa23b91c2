#include "app/single_instance.h"

#include <fmt/format.h>
#include <unistd.h>

#include <QSocketNotifier>
#include <utility>

#include "platform/x11/x11_connection.h"
#include "platform/x11/xcb_reply.h"

namespace ferrowyn {

namespace {

xcb_window_t createHiddenWindow(const X11Connection& connection) {
    const auto window = xcb_generate_id(connection.get());
    xcb_create_window(connection.get(), XCB_COPY_FROM_PARENT, window, connection.root(), -1, -1, 1, 1, 0,
                      XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, 0, nullptr);
    return window;
}

void tellOfSecondStart(xcb_connection_t* connection, xcb_window_t owner, xcb_atom_t startedAgain) {
    xcb_client_message_event_t message{};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = owner;
    message.type = startedAgain;
    // Without an event mask it goes to the client that made the window.
    xcb_send_event(connection, 0, owner, XCB_EVENT_MASK_NO_EVENT, reinterpret_cast<const char*>(&message));
}

/// Returns when the server has done everything asked so far.
void synchronize(xcb_connection_t* connection) {
    const XcbReply<xcb_get_input_focus_reply_t> ignored(
        xcb_get_input_focus_reply(connection, xcb_get_input_focus(connection), nullptr));
}

}  // namespace

std::unique_ptr<SingleInstance> SingleInstance::claim(std::unique_ptr<X11Connection> connection) {
    auto* server = connection->get();
    const auto selectionName = fmt::format("_FERROWYN_INSTANCE_{}", getuid());
    const auto atoms = connection->internAtoms({selectionName, "_FERROWYN_STARTED_AGAIN"});
    const auto selection = atoms[0];
    const auto startedAgain = atoms[1];

    // Of two programs that start at the same time, one looks only after the other has claimed.
    xcb_grab_server(server);
    const auto cookie = xcb_get_selection_owner(server, selection);
    const XcbReply<xcb_get_selection_owner_reply_t> reply(xcb_get_selection_owner_reply(server, cookie, nullptr));
    const auto owner = reply ? reply->owner : xcb_window_t{XCB_NONE};
    if (owner == XCB_NONE) {
        xcb_set_selection_owner(server, createHiddenWindow(*connection), selection, XCB_CURRENT_TIME);
    } else {
        tellOfSecondStart(server, owner, startedAgain);
    }
    xcb_ungrab_server(server);
    synchronize(server);
    if (owner != XCB_NONE) {
        return nullptr;
    }
    return std::unique_ptr<SingleInstance>(new SingleInstance(std::move(connection), startedAgain));
}

SingleInstance::SingleInstance(std::unique_ptr<X11Connection> connection, xcb_atom_t startedAgain)
    : connection_(std::move(connection)), startedAgain_(startedAgain) {}

SingleInstance::~SingleInstance() = default;

void SingleInstance::listen(std::function<void()> onSecondStart) {
    onSecondStart_ = std::move(onSecondStart);
    notifier_ = std::make_unique<QSocketNotifier>(connection_->fileDescriptor(), QSocketNotifier::Read);
    QObject::connect(notifier_.get(), &QSocketNotifier::activated, notifier_.get(), [this] { readEvents(); });
    // One may have started while the program was still starting: its message is read already, so nothing wakes up.
    readEvents();
}

void SingleInstance::readEvents() {
    while (const XcbReply<xcb_generic_event_t> event{xcb_poll_for_event(connection_->get())}) {
        const auto type = event->response_type & 0x7FU;
        if (type == XCB_CLIENT_MESSAGE &&
            reinterpret_cast<const xcb_client_message_event_t*>(event.get())->type == startedAgain_) {
            onSecondStart_();
        }
    }
    if (!connection_->isAlive()) {
        // A dead connection is readable for ever.
        notifier_->setEnabled(false);
    }
}

}  // namespace ferrowyn

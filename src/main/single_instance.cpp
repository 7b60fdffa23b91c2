#include "main/single_instance.h"

#include <fmt/format.h>
#include <poll.h>
#include <unistd.h>

#include <QAbstractEventDispatcher>
#include <QSocketNotifier>
#include <cstdint>
#include <cstdlib>
#include <utility>

#include "platform/x11/x11_connection.h"
#include "platform/x11/xcb_reply.h"

namespace ferrowyn {

namespace {

std::string fromEnvironment(const char* variable) {
    const char* value = std::getenv(variable);
    return value == nullptr ? "" : value;
}

}  // namespace

SessionEnvironment SessionEnvironment::current() {
    return {fromEnvironment("DISPLAY"), fromEnvironment("WAYLAND_DISPLAY"), fromEnvironment("XDG_SESSION_TYPE")};
}

std::optional<std::string> sessionRefusal(const SessionEnvironment& environment) {
    if (!environment.waylandDisplay.empty() || environment.sessionType == "wayland") {
        return waylandMessage();
    }
    if (environment.display.empty()) {
        return "ferrowyn: there is no display: DISPLAY is not set.\n"
               "Start Ferrowyn from within an X11 desktop session, or set DISPLAY to the X server to work on\n"
               "(for example DISPLAY=:0).";
    }
    return std::nullopt;
}

std::string unreachableDisplayMessage(const SessionEnvironment& environment) {
    return "ferrowyn: cannot connect to the X server \"" + environment.display +
           "\" that DISPLAY names.\n"
           "Check that it is running and that you may use it (XAUTHORITY), or start Ferrowyn from within an X11\n"
           "desktop session.";
}

std::string waylandMessage() {
    return "ferrowyn: this is a Wayland session, and only X11 sessions are supported so far.\n"
           "A Wayland compositor gives keys to the window in front only, and lists windows to nobody, so Alt+Tab\n"
           "cannot be captured and other windows cannot be switched to; XWayland does not change that.\n"
           "Log out and choose an \"Xorg\" (X11) session at the login screen.";
}

namespace {

struct Atoms {
    xcb_atom_t selection;
    xcb_atom_t request;
    xcb_atom_t word;

    static Atoms of(const X11Connection& connection) {
        const auto selection = SingleInstance::selectionName();
        const auto atoms = connection.internAtoms({selection, "_FERROWYN_REQUEST", "_FERROWYN_WORD"});
        return {atoms[0], atoms[1], atoms[2]};
    }
};

xcb_window_t createHiddenWindow(const X11Connection& connection) {
    const auto window = xcb_generate_id(connection.get());
    xcb_create_window(connection.get(), XCB_COPY_FROM_PARENT, window, connection.root(), -1, -1, 1, 1, 0,
                      XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, 0, nullptr);
    return window;
}

xcb_window_t ownerOf(xcb_connection_t* connection, xcb_atom_t selection) {
    const XcbReply<xcb_get_selection_owner_reply_t> reply(
        xcb_get_selection_owner_reply(connection, xcb_get_selection_owner(connection, selection), nullptr));
    return reply ? reply->owner : xcb_window_t{XCB_NONE};
}

/// `asker` is the window that gets the answer; None in an answer.
void send(xcb_connection_t* connection, xcb_window_t receiver, xcb_atom_t type, std::uint32_t request,
          xcb_window_t asker) {
    xcb_client_message_event_t message{};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = receiver;
    message.type = type;
    message.data.data32[0] = request;
    message.data.data32[1] = asker;
    // Without an event mask it goes to the client that made the window.
    xcb_send_event(connection, 0, receiver, XCB_EVENT_MASK_NO_EVENT, reinterpret_cast<const char*>(&message));
}

/// The request in the message; nothing when this version does not know it.
std::optional<ProgramRequest> requestIn(const xcb_client_message_event_t& message) {
    const auto code = message.data.data32[0];
    for (const auto& [request, name] : programRequestNames) {
        if (static_cast<std::uint32_t>(request) == code) {
            return request;
        }
    }
    return std::nullopt;
}

/// Returns when the server has handled all requests so far.
void synchronize(xcb_connection_t* connection) {
    const XcbReply<xcb_get_input_focus_reply_t> ignored(
        xcb_get_input_focus_reply(connection, xcb_get_input_focus(connection), nullptr));
}

/// Requests the event for the end of the window. The program destroys its window last, when it has released everything
/// else.
void listenForEnd(xcb_connection_t* connection, xcb_window_t window) {
    const std::uint32_t wanted = XCB_EVENT_MASK_STRUCTURE_NOTIFY;
    xcb_change_window_attributes(connection, window, XCB_CW_EVENT_MASK, &wanted);
}

enum class Outcome { answered, destroyed, neither };

/// Waits for a message of this type, or for the end of this window (`listenForEnd`).
Outcome waitForAnswerOrEnd(const X11Connection& connection, xcb_atom_t answerType, xcb_window_t window,
                           std::chrono::milliseconds patience) {
    const auto deadline = std::chrono::steady_clock::now() + patience;
    while (connection.isAlive()) {
        while (const XcbReply<xcb_generic_event_t> event{xcb_poll_for_event(connection.get())}) {
            const auto type = event->response_type & 0x7FU;
            const bool isDestroyed = type == XCB_DESTROY_NOTIFY &&
                                     reinterpret_cast<const xcb_destroy_notify_event_t*>(event.get())->window == window;
            // The only possible error: the window was destroyed before `listenForEnd`.
            if (isDestroyed || type == 0) {
                return Outcome::destroyed;
            }
            if (type == XCB_CLIENT_MESSAGE &&
                reinterpret_cast<const xcb_client_message_event_t*>(event.get())->type == answerType) {
                return Outcome::answered;
            }
        }
        const auto left =
            std::chrono::duration_cast<std::chrono::milliseconds>(deadline - std::chrono::steady_clock::now());
        if (left.count() <= 0) {
            return Outcome::neither;
        }
        pollfd readable{.fd = connection.fileDescriptor(), .events = POLLIN, .revents = 0};
        poll(&readable, 1, static_cast<int>(left.count()));
    }
    return Outcome::destroyed;  // With the server, all its clients are gone.
}

}  // namespace

std::string SingleInstance::selectionName() {
    return fmt::format("_FERROWYN_INSTANCE_{}", getuid());
}

std::unique_ptr<SingleInstance> SingleInstance::claim(std::unique_ptr<X11Connection>& connection) {
    auto* server = connection->get();
    const auto atoms = Atoms::of(*connection);
    // Holds the server, so that of two programs that start at the same time one sees the claim of the other.
    xcb_grab_server(server);
    const bool isFree = ownerOf(server, atoms.selection) == XCB_NONE;
    const Claim claim{.window = isFree ? createHiddenWindow(*connection) : xcb_window_t{XCB_WINDOW_NONE},
                      .selection = atoms.selection,
                      .requestType = atoms.request,
                      .word = atoms.word};
    if (isFree) {
        xcb_set_selection_owner(server, claim.window, claim.selection, XCB_CURRENT_TIME);
    }
    xcb_ungrab_server(server);
    synchronize(server);
    return isFree ? std::unique_ptr<SingleInstance>(new SingleInstance(std::move(connection), claim)) : nullptr;
}

SingleInstance::Answer SingleInstance::ask(const X11Connection& connection, ProgramRequest request,
                                           std::chrono::milliseconds patience) {
    auto* server = connection.get();
    const auto atoms = Atoms::of(connection);
    const auto owner = ownerOf(server, atoms.selection);
    if (owner == XCB_NONE) {
        return Answer::nobodyRuns;
    }
    listenForEnd(server, owner);
    send(server, owner, atoms.request, static_cast<std::uint32_t>(request), createHiddenWindow(connection));
    synchronize(server);
    switch (waitForAnswerOrEnd(connection, atoms.request, owner, patience)) {
        case Outcome::answered:
            return Answer::heard;
        case Outcome::destroyed:
            return Answer::nobodyRuns;
        case Outcome::neither:
            break;
    }
    return Answer::none;
}

std::optional<std::string> SingleInstance::wordOfRunning(const X11Connection& connection) {
    constexpr std::uint32_t longest = 64;
    auto* server = connection.get();
    const auto atoms = Atoms::of(connection);
    const auto owner = ownerOf(server, atoms.selection);
    if (owner == XCB_NONE) {
        return std::nullopt;
    }
    const auto word = X11Property::collect(
        server, xcb_get_property(server, 0, owner, atoms.word, XCB_ATOM_STRING, 0, longest / sizeof(std::uint32_t)));
    const auto bytes = word.bytes(XCB_ATOM_STRING);
    return bytes && !bytes->empty() ? std::optional(std::string(bytes->begin(), bytes->end())) : std::nullopt;
}

void SingleInstance::tellOthers(std::string_view word) const {
    auto* server = connection_->get();
    xcb_change_property(server, XCB_PROP_MODE_REPLACE, claim_.window, claim_.word, XCB_ATOM_STRING, 8,
                        static_cast<std::uint32_t>(word.size()), word.data());
    xcb_flush(server);
}

SingleInstance::Ending SingleInstance::endRunning(const X11Connection& connection, std::chrono::milliseconds patience) {
    auto* server = connection.get();
    const auto atoms = Atoms::of(connection);
    const auto owner = ownerOf(server, atoms.selection);
    if (owner == XCB_NONE) {
        return Ending::nobodyRan;
    }
    listenForEnd(server, owner);
    send(server, owner, atoms.request, static_cast<std::uint32_t>(ProgramRequest::quit), XCB_WINDOW_NONE);
    synchronize(server);
    const auto outcome = waitForAnswerOrEnd(connection, XCB_ATOM_NONE, owner, patience);
    return outcome == Outcome::destroyed ? Ending::ended : Ending::stillRuns;
}

/// Reads the messages when they arrive.
class SingleInstance::Listener {
public:
    Listener(const X11Connection& connection, const Claim& claim, std::function<void(ProgramRequest)> onRequest)
        : connection_(connection),
          claim_(claim),
          onRequest_(std::move(onRequest)),
          notifier_(connection.fileDescriptor(), QSocketNotifier::Read) {
        QObject::connect(&notifier_, &QSocketNotifier::activated, &notifier_, [this] { readEvents(); });
        // xcb may read events while it writes. The socket does not signal those.
        QObject::connect(QAbstractEventDispatcher::instance(), &QAbstractEventDispatcher::aboutToBlock, &notifier_,
                         [this] { readEvents(); });
    }

    void readEvents() {
        while (const XcbReply<xcb_generic_event_t> event{xcb_poll_for_event(connection_.get())}) {
            if (typeOf(*event) == XCB_CLIENT_MESSAGE) {
                take(*reinterpret_cast<const xcb_client_message_event_t*>(event.get()));
            } else if (event->response_type == XCB_SELECTION_CLEAR) {
                claimAgain();
            }
        }
        if (!connection_.isAlive()) {
            // A dead connection is always readable.
            notifier_.setEnabled(false);
        }
    }

private:
    void take(const xcb_client_message_event_t& message) {
        const auto request = message.type == claim_.requestType ? requestIn(message) : std::nullopt;
        if (!request) {
            return;
        }
        if (const xcb_window_t asker = message.data.data32[1]; asker != XCB_WINDOW_NONE) {
            send(connection_.get(), asker, claim_.requestType, message.data.data32[0], XCB_WINDOW_NONE);
            xcb_flush(connection_.get());
        }
        onRequest_(*request);
    }

    void claimAgain() {
        if (claimsLeft_ > 0) {
            --claimsLeft_;
            xcb_set_selection_owner(connection_.get(), claim_.window, claim_.selection, XCB_CURRENT_TIME);
            xcb_flush(connection_.get());
        }
    }

    const X11Connection& connection_;
    Claim claim_;
    /// Limited, so that two programs that take the claim from each other stop at some point.
    int claimsLeft_ = 100;
    std::function<void(ProgramRequest)> onRequest_;
    QSocketNotifier notifier_;
};

SingleInstance::SingleInstance(std::unique_ptr<X11Connection> connection, const Claim& claim)
    : connection_(std::move(connection)), claim_(claim) {}

SingleInstance::~SingleInstance() = default;

Subscription SingleInstance::listen(std::function<void(ProgramRequest)> onRequest) {
    // Shared only because a std::function must be copyable.
    const auto listener = std::make_shared<Listener>(*connection_, claim_, std::move(onRequest));
    // A start may have sent its request while the program was starting. xcb has read that message already, so the
    // socket does not signal it.
    listener->readEvents();
    return Subscription([held = listener]() mutable { held.reset(); });
}

}  // namespace ferrowyn

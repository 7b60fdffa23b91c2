#include "platform/x11/x11_window_control.h"

#include <algorithm>
#include <array>

#include "platform/x11/x11_connection.h"
#include "platform/x11/x11_desktop_model.h"
#include "platform/x11/xcb_reply.h"

namespace ferrowyn {
namespace {

/// The source indication of EWMH for pagers. Managers obey it, because a pager acts for the user.
constexpr std::uint32_t sourcePager = 2;

/// The actions of a `_NET_WM_STATE` message.
constexpr std::uint32_t stateRemove = 0, stateAdd = 1;

void sendMessage(X11EventConnection& connection, xcb_window_t window, xcb_atom_t message,
                 const std::array<std::uint32_t, 5>& data) {
    xcb_client_message_event_t event{};
    event.response_type = XCB_CLIENT_MESSAGE;
    event.format = 32;
    event.window = window;
    event.type = message;
    std::ranges::copy(data, event.data.data32);
    xcb_send_event(connection.get(), 0, connection.root(),
                   XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT,
                   reinterpret_cast<const char*>(&event));
}

/// The requests for a window's frame in root coordinates. The constructor sends them; `collect` takes the replies.
struct X11PlaceRequest {
    X11PlaceRequest(X11EventConnection& connection, xcb_window_t asked)
        : window(asked),
          geometry(xcb_get_geometry(connection.get(), asked)),
          position(xcb_translate_coordinates(connection.get(), asked, connection.root(), 0, 0)) {}

    /// nullopt when the window is gone.
    [[nodiscard]] std::optional<Rect> collect(X11EventConnection& connection) const {
        const XcbReply<xcb_get_geometry_reply_t> size(xcb_get_geometry_reply(connection.get(), geometry, nullptr));
        const XcbReply<xcb_translate_coordinates_reply_t> origin(
            xcb_translate_coordinates_reply(connection.get(), position, nullptr));
        if (size == nullptr || origin == nullptr) {
            return std::nullopt;
        }
        return Rect{static_cast<double>(origin->dst_x), static_cast<double>(origin->dst_y),
                    static_cast<double>(size->width), static_cast<double>(size->height)};
    }

    xcb_window_t window;
    xcb_get_geometry_cookie_t geometry;
    xcb_translate_coordinates_cookie_t position;
};

bool intersect(const Rect& a, const Rect& b) {
    return a.x < b.x + b.width && b.x < a.x + a.width && a.y < b.y + b.height && b.y < a.y + a.height;
}

}  // namespace

void X11WindowControl::activateApplication(Pid pid) {
    auto window = monitor_.model().lastActiveOf(pid);
    if (!window) {
        const auto windows = monitor_.model().windowsOf(pid);
        if (windows.empty()) {
            log_.write(LogLevel::debug, "activation", "The application has no window to activate");
            return;
        }
        window = windows.front();
    }
    requestActivation(*window);
    monitor_.connection().flush();
}

void X11WindowControl::raiseAndFocus(const RaiseRequest& request) {
    xcb_window_t top = XCB_WINDOW_NONE;
    // The dialog last: a later request replaces an earlier one.
    for (const auto& element : {request.blockedWindow, std::optional(request.window)}) {
        const auto* const facts = element ? listed(*element) : nullptr;
        if (facts == nullptr) {
            continue;
        }
        top = facts->id;
        if (request.isRetry && facts->isHidden) {
            // The first request did not restore it. This manager follows ICCCM, where mapping a window restores it.
            xcb_map_window(monitor_.connection().get(), top);
        }
        requestActivation(top);
    }
    raised_ = top;
    if (top == XCB_WINDOW_NONE) {
        // The window was closed meanwhile. Only the first try activates its application: a later one would not notice
        // that the user has chosen something else since.
        if (!request.isRetry) {
            activateApplication(request.pid);
        }
        return;
    }
    stackAbove(top);
    monitor_.connection().flush();
}

void X11WindowControl::bringToFront(xcb_window_t window) {
    // The user's last input may be a click that only Qt has received yet, or a command typed into another program. A
    // manager that knows of a later input than the request's time would only highlight the window.
    if (const auto now = serverTimeNow(monitor_.connection().get())) {
        context_.noteUserTime(*now);
    }
    requestActivation(window);
    monitor_.connection().flush();
}

void X11WindowControl::requestActivation(xcb_window_t window) {
    requested_ = window;
    requestTime_ = userTime();
    const auto& model = monitor_.model();
    activeAtRequest_ = model.activeWindow();
    isReached_ = activeAtRequest_ == window;
    const auto* const facts = model.find(window);
    const bool changesDesktop = facts != nullptr && facts->desktop && !facts->isOnDesktop(model.currentDesktop());
    using Path = X11DesktopModel::Path;
    monitor_.expectActive(window, changesDesktop ? Path::acrossDesktops : Path::onOneDesktop);
    if (changesDesktop) {
        // Otherwise some managers move the window to the current desktop.
        sendToManager(monitor_.connection().root(), atoms_.netCurrentDesktop, {*facts->desktop, requestTime_, 0, 0, 0});
    }
    sendActivation(window, requestTime_);
    uncover(window);
}

void X11WindowControl::takeFocusBackFor(xcb_window_t window) {
    if (context_.lastUserTime.load() > requestTime_) {
        // Not a theft: the user has clicked or pressed a key since the request.
        monitor_.stopExpectingActive();
        return;
    }
    isReached_ = false;
    // A time later than that of the other window's request, which the manager would prefer otherwise.
    sendActivation(window, monitor_.latestServerTime());
    monitor_.connection().flush();
}

void X11WindowControl::sendActivation(xcb_window_t window, xcb_timestamp_t time) {
    sendToManager(window, atoms_.netActiveWindow, {sourcePager, time, monitor_.model().activeWindow(), 0, 0});
}

void X11WindowControl::stackAbove(xcb_window_t window) {
    if (monitor_.model().supportsRestacking()) {
        sendToManager(window, atoms_.netRestackWindow, {sourcePager, XCB_WINDOW_NONE, XCB_STACK_MODE_ABOVE, 0, 0});
        return;
    }
    const std::uint32_t mode = XCB_STACK_MODE_ABOVE;
    xcb_configure_window(monitor_.connection().get(), window, XCB_CONFIG_WINDOW_STACK_MODE, &mode);
}

void X11WindowControl::uncover(xcb_window_t window) {
    const auto fullScreen = monitor_.model().fullScreenWindowsLeftAbove(window);
    if (fullScreen.empty()) {
        return;
    }
    // Their present frames are needed, because a full-screen window on another screen is left as it is.
    auto& connection = monitor_.connection();
    const X11PlaceRequest place(connection, window);
    std::vector<X11PlaceRequest> places;
    places.reserve(fullScreen.size());
    for (const auto each : fullScreen) {
        places.emplace_back(connection, each);
    }
    connection.whenAnswered([&connection, &atoms = atoms_, place, places] {
        const auto own = place.collect(connection);
        for (const auto& each : places) {
            const auto other = each.collect(connection);
            if (own && other && intersect(*own, *other)) {
                // Adding the state "below" takes the window out of the layer above the others. The state is removed at
                // once, and the window stays full screen.
                for (const auto action : {stateAdd, stateRemove}) {
                    sendMessage(connection, each.window, atoms.netWmState,
                                {action, atoms.stateBelow, 0, sourcePager, 0});
                }
            }
        }
        connection.flush();
    });
}

void X11WindowControl::sendToManager(xcb_window_t window, xcb_atom_t message,
                                     const std::array<std::uint32_t, 5>& data) {
    sendMessage(monitor_.connection(), window, message, data);
}

xcb_timestamp_t X11WindowControl::userTime() const {
    // Before the user's first input there is no time. Managers distrust 0, so the latest server time is used.
    const auto time = context_.lastUserTime.load();
    return time != 0 ? time : monitor_.latestServerTime();
}

ActivationState X11WindowControl::stateOf(Pid /*pid*/, const AXElementRef& window) const {
    // Also when the window is gone by now.
    if (const auto id = X11Element::windowOf(window); id && isOvertaken(*id)) {
        return ActivationState::overtaken;
    }
    const auto* const facts = listed(window);
    if (facts == nullptr) {
        return ActivationState::unreadable;
    }
    const auto active = monitor_.model().activeWindow();
    if (active == facts->id) {
        return ActivationState::active;
    }
    const bool isLost = active == XCB_WINDOW_NONE && requested_ == facts->id && isReached_;
    return isLost ? ActivationState::lost : ActivationState::notActive;
}

bool X11WindowControl::isOvertaken(xcb_window_t window) const {
    const auto active = monitor_.model().activeWindow();
    if (raised_ != window || active == window) {
        return false;
    }
    if (requested_ != window) {
        return true;  // a window of this program was brought to the front since
    }
    if (active == XCB_WINDOW_NONE) {
        return false;  // the user did not choose that
    }
    const auto click = context_.lastClickTime.load();
    const bool hasClicked = click != 0 && click > requestTime_;
    return isReached_ || (hasClicked && active != activeAtRequest_);
}

std::optional<AXElementRef> X11WindowControl::findWindow(Pid pid, WindowId window) const {
    const auto* const facts = monitor_.model().find(window);
    return facts != nullptr && facts->pid == pid ? std::optional(X11Element::make(window)) : std::nullopt;
}

const X11WindowFacts* X11WindowControl::listed(const AXElementRef& element) const {
    const auto window = X11Element::windowOf(element);
    return window ? monitor_.model().find(*window) : nullptr;
}

}  // namespace ferrowyn

#include "platform/x11/x11_window_control.h"

#include <algorithm>
#include <array>
#include <utility>

#include "platform/x11/x11_connection.h"
#include "platform/x11/x11_desktop_model.h"
#include "platform/x11/xcb_reply.h"

namespace ferrowyn {
namespace {

/// The source indication of EWMH for pagers. Managers obey it, because a pager acts for the user.
constexpr std::uint32_t sourcePager = 2;
/// Longer than the pause after which an unconfirmed activation is requested again.
constexpr Seconds requestLifetime{1.0};

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

void X11WindowControl::raise(const AXElementRef& window) {
    const auto id = X11Element::windowOf(window);
    if (!id) {
        return;
    }
    const auto* const facts = monitor_.model().find(*id);
    if ((requested_ == id || requestedBefore_ == id) && facts != nullptr && facts->isHidden) {
        // The first request did not restore it. This manager follows ICCCM, where mapping a window restores it.
        xcb_map_window(monitor_.connection().get(), *id);
    }
    requestActivation(*id);
}

void X11WindowControl::bringToFront(xcb_window_t window) {
    // The user's last input may be a click that only Qt has received yet, or a command typed into another program. A
    // manager that knows of a later input than the request's time would only highlight the window.
    if (const auto now = serverTimeNow(monitor_.connection().get())) {
        context_.noteUserTime(*now);
    }
    raise(X11Element::make(window));
}

void X11WindowControl::activate(Pid pid) {
    if (isOwnedBy(requested_, pid)) {
        return;  // a request for the application's last active window would replace the one for the chosen window
    }
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
}

void X11WindowControl::requestActivation(xcb_window_t window) {
    if (requested_ != window) {
        requestedBefore_ = std::exchange(requested_, window);
    }
    requestEnd_ = mainLoop_.after(requestLifetime, [this] {
        requested_.reset();
        requestedBefore_.reset();
    });
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
    monitor_.connection().flush();
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

void X11WindowControl::setFrontmost(Pid pid) {
    if (isOwnedBy(requested_, pid)) {
        stackAbove(*requested_);
        monitor_.connection().flush();
    }
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

bool X11WindowControl::isOwnedBy(std::optional<xcb_window_t> window, Pid pid) const {
    const auto* const facts = window ? monitor_.model().find(*window) : nullptr;
    return facts != nullptr && facts->pid == pid;
}

bool X11WindowControl::isActive(Pid pid) const {
    return isOwnedBy(monitor_.model().activeWindow(), pid);
}

std::optional<bool> X11WindowControl::isMain(const AXElementRef& window) const {
    const auto id = X11Element::windowOf(window);
    const auto* const facts = id ? monitor_.model().find(*id) : nullptr;
    if (facts == nullptr) {
        return std::nullopt;
    }
    return monitor_.model().activeWindow() == *id || monitor_.model().lastActiveOf(facts->pid) == *id;
}

std::optional<bool> X11WindowControl::isFocused(const AXElementRef& window) const {
    const auto id = X11Element::windowOf(window);
    if (!id || monitor_.model().find(*id) == nullptr) {
        return std::nullopt;
    }
    return monitor_.model().activeWindow() == *id;
}

bool X11WindowControl::wasOvertaken(const AXElementRef& window) const {
    const auto id = X11Element::windowOf(window);
    if (id && requested_ && requested_ != id) {
        return true;  // a window of this program was brought to the front since
    }
    const auto active = monitor_.model().activeWindow();
    // Managers set None for a moment; the user did not choose that.
    if (!id || requested_ != id || active == *id || active == XCB_WINDOW_NONE) {
        return false;
    }
    const auto click = context_.lastClickTime.load();
    const bool hasClicked = click != 0 && click > requestTime_;
    return isReached_ || (hasClicked && active != activeAtRequest_);
}

std::vector<AXElementRef> X11WindowControl::windowElements(Pid pid) const {
    std::vector<AXElementRef> elements;
    for (const auto window : monitor_.model().windowsOf(pid)) {
        elements.push_back(X11Element::make(window));
    }
    return elements;
}

std::optional<WindowId> X11WindowControl::windowNumber(const AXElementRef& window) const {
    return X11Element::windowOf(window);
}

}  // namespace ferrowyn

#include "platform/x11/x11_window_control.h"

#include <algorithm>
#include <array>
#include <utility>

#include "platform/x11/x11_connection.h"
#include "platform/x11/x11_desktop_model.h"
#include "platform/x11/xcb_reply.h"

namespace ferrowyn {
namespace {

/// Who asks, as the conventions number it: a pager acts for the user, so managers do not second-guess it.
constexpr std::uint32_t sourcePager = 2;
/// Longer than the pause after which an activation that was not confirmed is asked for again.
constexpr Seconds requestLifetime{1.0};

/// As the conventions number what to do with a state.
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

/// Asks where a window is on the screens.
struct X11PlaceRequest {
    X11PlaceRequest(X11EventConnection& connection, xcb_window_t asked)
        : window(asked),
          geometry(xcb_get_geometry(connection.get(), asked)),
          position(xcb_translate_coordinates(connection.get(), asked, connection.root(), 0, 0)) {}

    /// Nothing when the window is gone.
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
        // The first request did not restore it: this manager goes by the older convention, by which a window is
        // restored by mapping it.
        xcb_map_window(monitor_.connection().get(), *id);
    }
    requestActivation(*id);
}

void X11WindowControl::bringToFront(xcb_window_t window) {
    // The click in a menu that asked for it may have been heard by the toolkit only so far, and a command line is typed
    // into another program: a manager that knows of a later input than this would only highlight the window.
    if (const auto now = serverTimeNow(monitor_.connection().get())) {
        context_.noteUserTime(*now);
    }
    raise(X11Element::make(window));
}

void X11WindowControl::activate(Pid pid) {
    if (isOwnedBy(requested_, pid)) {
        return;  // its window is on its way; the application's own idea of its front window must not overtake it
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
        // Left to themselves some managers bring the window here instead of taking the user there.
        sendToManager(monitor_.connection().root(), atoms_.netCurrentDesktop, {*facts->desktop, requestTime_, 0, 0, 0});
    }
    sendActivation(window, requestTime_);
    uncover(window);
    monitor_.connection().flush();
}

void X11WindowControl::takeFocusBackFor(xcb_window_t window) {
    if (context_.lastUserTime.load() > requestTime_) {
        // It was no theft: the user has clicked there, or pressed the trigger again.
        monitor_.stopExpectingActive();
        return;
    }
    isReached_ = false;
    // Later than the thief's request, or that would prevail.
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
    // Where the windows are now: one that fills another screen stays as it is.
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
                // Being told to stay below the others takes it out of the layer above them; it may come up again at
                // once. It stays full screen all the time.
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
    // Before the user's first key there is none; managers distrust 0, so the latest time the server told stands in.
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
    const auto active = monitor_.model().activeWindow();
    // Managers say in passing that no window is active: that is nobody's choice.
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

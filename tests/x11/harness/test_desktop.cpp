#include "tests/x11/harness/test_desktop.h"

#include <poll.h>
#include <xcb/damage.h>
#include <xcb/xinput.h>

#include <QImage>
#include <algorithm>
#include <array>
#include <cstdlib>
#include <cstring>
#include <span>
#include <stdexcept>

#include "platform/x11/xcb_reply.h"

namespace ferrowyn::x11test {
namespace {

constexpr std::uint32_t maximumPropertyWords = 4096;

XcbReply<xcb_get_property_reply_t> property(xcb_connection_t* connection, xcb_window_t window, xcb_atom_t name) {
    const auto cookie =
        xcb_get_property(connection, 0, window, name, XCB_GET_PROPERTY_TYPE_ANY, 0, maximumPropertyWords);
    return XcbReply<xcb_get_property_reply_t>(xcb_get_property_reply(connection, cookie, nullptr));
}

}  // namespace

TestDesktop::TestDesktop(const std::string& display) {
    connection_ = xcb_connect(display.c_str(), nullptr);
    if (xcb_connection_has_error(connection_) != 0) {
        xcb_disconnect(connection_);
        throw std::runtime_error("no X server at " + display);
    }
    screen_ = xcb_setup_roots_iterator(xcb_get_setup(connection_)).data;
    clock_ = xcb_generate_id(connection_);
    const std::uint32_t clockMask = XCB_EVENT_MASK_PROPERTY_CHANGE;
    xcb_create_window(connection_, 0, clock_, root(), 0, 0, 1, 1, 0, XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT,
                      XCB_CW_EVENT_MASK, &clockMask);
    // An active keyboard grab causes focus events when it begins and ends.
    const std::uint32_t mask =
        XCB_EVENT_MASK_PROPERTY_CHANGE | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_FOCUS_CHANGE;
    xcb_change_window_attributes(connection_, root(), XCB_CW_EVENT_MASK, &mask);
    // Made before any window is shown: a damage object made later would report the whole screen at once.
    const auto version = xcb_damage_query_version(connection_, 1, 1);
    free(xcb_damage_query_version_reply(connection_, version, nullptr));
    xcb_damage_create(connection_, xcb_generate_id(connection_), root(), XCB_DAMAGE_REPORT_LEVEL_RAW_RECTANGLES);
    selectRawKeys();
    xcb_flush(connection_);
}

void TestDesktop::selectRawKeys() const {
    const XcbReply<xcb_input_xi_query_version_reply_t> inputVersion(
        xcb_input_xi_query_version_reply(connection_, xcb_input_xi_query_version(connection_, 2, 2), nullptr));
    struct {
        xcb_input_event_mask_t head;
        std::uint32_t events;
    } const mask{{XCB_INPUT_DEVICE_ALL_MASTER, 1},
                 XCB_INPUT_XI_EVENT_MASK_RAW_KEY_PRESS | XCB_INPUT_XI_EVENT_MASK_RAW_KEY_RELEASE};
    if (inputVersion != nullptr) {
        xcb_input_xi_select_events(connection_, root(), 1, &mask.head);
    }
}

TestDesktop::~TestDesktop() {
    xcb_disconnect(connection_);
}

xcb_atom_t TestDesktop::atom(const std::string& name) const {
    const auto cookie = xcb_intern_atom(connection_, 0, static_cast<std::uint16_t>(name.size()), name.c_str());
    const XcbReply<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(connection_, cookie, nullptr));
    return reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
}

bool TestDesktop::waitUntil(const std::function<bool()>& predicate, milliseconds budget) {
    const Deadline deadline(budget);
    while (true) {
        // The predicate's round trips read events into the queue, so it is checked until the queue is empty.
        while (XcbReply<xcb_generic_event_t>(xcb_poll_for_event(connection_))) {
        }
        if (predicate()) {
            return true;
        }
        // A predicate may cause events itself; the deadline must still end the loop.
        if (!deadline.hasPassed() && XcbReply<xcb_generic_event_t>(xcb_poll_for_queued_event(connection_))) {
            continue;
        }
        xcb_flush(connection_);
        pollfd waiting{xcb_get_file_descriptor(connection_), POLLIN, 0};
        if (poll(&waiting, 1, deadline.remainingMilliseconds()) <= 0 || xcb_connection_has_error(connection_) != 0) {
            return predicate();
        }
    }
}

void TestDesktop::watchProperties(xcb_window_t window) {
    const std::uint32_t mask = XCB_EVENT_MASK_PROPERTY_CHANGE | XCB_EVENT_MASK_STRUCTURE_NOTIFY;
    xcb_change_window_attributes(connection_, window, XCB_CW_EVENT_MASK, &mask);
    xcb_flush(connection_);
}

std::vector<std::uint32_t> TestDesktop::cardinals(xcb_window_t window, const std::string& name) const {
    const auto reply = property(connection_, window, atom(name));
    if (!reply || reply->format != 32) {
        return {};
    }
    const auto* const first = static_cast<const std::uint32_t*>(xcb_get_property_value(reply.get()));
    return {first, first + reply->value_len};
}

std::string TestDesktop::text(xcb_window_t window, const std::string& name) const {
    const auto reply = property(connection_, window, atom(name));
    if (!reply || reply->format != 8) {
        return {};
    }
    return {static_cast<const char*>(xcb_get_property_value(reply.get())), reply->value_len};
}

std::optional<xcb_window_t> TestDesktop::windowManagerCheckWindow() const {
    const auto announced = cardinals(root(), "_NET_SUPPORTING_WM_CHECK");
    if (announced.empty() || cardinals(announced.front(), "_NET_SUPPORTING_WM_CHECK") != announced) {
        return std::nullopt;
    }
    return announced.front();
}

xcb_window_t TestDesktop::activeWindow() const {
    const auto active = cardinals(root(), "_NET_ACTIVE_WINDOW");
    return active.empty() ? xcb_window_t{XCB_WINDOW_NONE} : active.front();
}

bool TestDesktop::waitForActiveWindow(xcb_window_t window, milliseconds budget) {
    return waitUntil([&] { return activeWindow() == window; }, budget);
}

bool TestDesktop::waitForFocus(xcb_window_t window, milliseconds budget) {
    return waitUntil(
        [&] {
            const XcbReply<xcb_get_input_focus_reply_t> reply(
                xcb_get_input_focus_reply(connection_, xcb_get_input_focus(connection_), nullptr));
            return reply != nullptr && reply->focus == window;
        },
        budget);
}

std::vector<std::uint32_t> TestDesktop::clientList() const {
    return cardinals(root(), "_NET_CLIENT_LIST");
}

bool TestDesktop::hasState(xcb_window_t window, const std::string& state) const {
    const auto wanted = atom(state);
    for (const auto present : cardinals(window, "_NET_WM_STATE")) {
        if (present == wanted) {
            return true;
        }
    }
    return false;
}

std::uint32_t TestDesktop::currentDesktop() const {
    const auto current = cardinals(root(), "_NET_CURRENT_DESKTOP");
    return current.empty() ? 0 : current.front();
}

xcb_timestamp_t TestDesktop::serverTime() {
    xcb_change_property(connection_, XCB_PROP_MODE_APPEND, clock_, XCB_ATOM_WM_NAME, XCB_ATOM_STRING, 8, 0, nullptr);
    xcb_flush(connection_);
    while (const XcbReply<xcb_generic_event_t> event{xcb_wait_for_event(connection_)}) {
        const auto* const change = reinterpret_cast<const xcb_property_notify_event_t*>(event.get());
        if ((event->response_type & 0x7FU) == XCB_PROPERTY_NOTIFY && change->window == clock_) {
            return change->time;
        }
    }
    return XCB_CURRENT_TIME;
}

void TestDesktop::sendToRoot(xcb_window_t window, const std::string& message, const std::vector<std::uint32_t>& data) {
    xcb_client_message_event_t event{};
    event.response_type = XCB_CLIENT_MESSAGE;
    event.format = 32;
    event.window = window;
    event.type = atom(message);
    for (std::size_t index = 0; index < data.size() && index < 5; ++index) {
        event.data.data32[index] = data[index];
    }
    xcb_send_event(connection_, 0, root(), XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT,
                   reinterpret_cast<const char*>(&event));
    xcb_flush(connection_);
}

void TestDesktop::activate(xcb_window_t window) {
    constexpr std::uint32_t fromPager = 2;
    sendToRoot(window, "_NET_ACTIVE_WINDOW", {fromPager, serverTime(), 0});
}

void TestDesktop::setState(xcb_window_t window, const std::string& state, bool isOn) {
    constexpr std::uint32_t fromPager = 2;
    sendToRoot(window, "_NET_WM_STATE", {isOn ? 1U : 0U, atom(state), 0, fromPager});
}

void TestDesktop::moveToDesktop(xcb_window_t window, std::uint32_t desktop) {
    constexpr std::uint32_t fromPager = 2;
    sendToRoot(window, "_NET_WM_DESKTOP", {desktop, fromPager});
}

void TestDesktop::setCurrentDesktop(std::uint32_t desktop) {
    sendToRoot(root(), "_NET_CURRENT_DESKTOP", {desktop, XCB_CURRENT_TIME});
}

void TestDesktop::setDesktopCount(std::uint32_t count) {
    sendToRoot(root(), "_NET_NUMBER_OF_DESKTOPS", {count});
}

void TestDesktop::iconify(xcb_window_t window) {
    constexpr std::uint32_t iconicState = 3;
    sendToRoot(window, "WM_CHANGE_STATE", {iconicState});
}

std::optional<TestDesktop::Place> TestDesktop::placeOf(xcb_window_t window) const {
    const auto geometryCookie = xcb_get_geometry(connection_, window);
    const auto positionCookie = xcb_translate_coordinates(connection_, window, root(), 0, 0);
    const XcbReply<xcb_get_geometry_reply_t> geometry(xcb_get_geometry_reply(connection_, geometryCookie, nullptr));
    const XcbReply<xcb_translate_coordinates_reply_t> position(
        xcb_translate_coordinates_reply(connection_, positionCookie, nullptr));
    if (!geometry || !position) {
        return std::nullopt;
    }
    return Place{position->dst_x, position->dst_y, geometry->width, geometry->height};
}

bool TestDesktop::isViewable(xcb_window_t window) const {
    const auto cookie = xcb_get_window_attributes(connection_, window);
    const XcbReply<xcb_get_window_attributes_reply_t> attributes(
        xcb_get_window_attributes_reply(connection_, cookie, nullptr));
    return attributes && attributes->map_state == XCB_MAP_STATE_VIEWABLE;
}

std::optional<xcb_window_t> TestDesktop::windowTitled(const std::string& title) const {
    for (const auto window : clientList()) {
        if (text(window, "_NET_WM_NAME") == title && isViewable(window)) {
            return window;
        }
    }
    return std::nullopt;
}

std::set<xcb_window_t> TestDesktop::shownTopLevels() const {
    const auto cookie = xcb_query_tree(connection_, root());
    const XcbReply<xcb_query_tree_reply_t> tree(xcb_query_tree_reply(connection_, cookie, nullptr));
    if (!tree) {
        return {};
    }
    const std::span children(xcb_query_tree_children(tree.get()),
                             static_cast<std::size_t>(xcb_query_tree_children_length(tree.get())));
    std::set<xcb_window_t> shown;
    for (const auto window : children) {
        // A tray may embed and map its icon between these requests. The icon is then no top-level window.
        if (isShown(window) && isTopLevel(window)) {
            shown.insert(window);
        }
    }
    return shown;
}

bool TestDesktop::isShown(xcb_window_t window) const {
    const auto cookie = xcb_get_window_attributes(connection_, window);
    const XcbReply<xcb_get_window_attributes_reply_t> attributes(
        xcb_get_window_attributes_reply(connection_, cookie, nullptr));
    if (!attributes || attributes->map_state != XCB_MAP_STATE_VIEWABLE ||
        attributes->_class != XCB_WINDOW_CLASS_INPUT_OUTPUT) {
        return false;
    }
    // Managers and toolkits have tiny helper windows, which do not count.
    constexpr int smallest = 16;
    const auto place = placeOf(window);
    return place && place->x + place->width > 0 && place->y + place->height > 0 &&
           place->x < screen_->width_in_pixels && place->y < screen_->height_in_pixels && place->width > smallest;
}

bool TestDesktop::isTopLevel(xcb_window_t window) const {
    const auto cookie = xcb_query_tree(connection_, window);
    const XcbReply<xcb_query_tree_reply_t> tree(xcb_query_tree_reply(connection_, cookie, nullptr));
    return tree && tree->parent == root();
}

std::optional<xcb_window_t> TestDesktop::visiblePanel() const {
    for (const auto window : shownTopLevels()) {
        if (text(window, "WM_CLASS").find("ferrowyn") != std::string::npos) {
            return window;
        }
    }
    return std::nullopt;
}

bool TestDesktop::waitForPanel(bool isVisible, milliseconds budget) {
    return waitUntil([&] { return visiblePanel().has_value() == isVisible; }, budget);
}

std::uint32_t TestDesktop::pixel(int x, int y) const {
    const auto one = pixels({x, y, 1, 1});
    return one.empty() ? 0 : one.front() & 0xFFFFFFU;
}

std::vector<std::uint32_t> TestDesktop::pixels(const Place& place) const {
    const auto cookie =
        xcb_get_image(connection_, XCB_IMAGE_FORMAT_Z_PIXMAP, root(), static_cast<std::int16_t>(place.x),
                      static_cast<std::int16_t>(place.y), static_cast<std::uint16_t>(place.width),
                      static_cast<std::uint16_t>(place.height), ~0U);
    const XcbReply<xcb_get_image_reply_t> image(xcb_get_image_reply(connection_, cookie, nullptr));
    if (!image) {
        return {};
    }
    std::vector<std::uint32_t> result(static_cast<std::size_t>(place.width) * static_cast<std::size_t>(place.height));
    std::memcpy(result.data(), xcb_get_image_data(image.get()),
                std::min(result.size() * 4, static_cast<std::size_t>(xcb_get_image_data_length(image.get()))));
    for (auto& value : result) {
        value |= 0xFF000000U;
    }
    return result;
}

void TestDesktop::screenshot(const std::string& path) const {
    const Place whole{0, 0, screen_->width_in_pixels, screen_->height_in_pixels};
    const auto content = pixels(whole);
    const QImage image(reinterpret_cast<const uchar*>(content.data()), whole.width, whole.height, QImage::Format_RGB32);
    if (content.empty() || !image.save(QString::fromStdString(path))) {
        throw std::runtime_error("cannot write the screenshot " + path);
    }
}

bool TestDesktop::anyKeyIsDown() const {
    const XcbReply<xcb_query_keymap_reply_t> keys(
        xcb_query_keymap_reply(connection_, xcb_query_keymap(connection_), nullptr));
    for (const auto eightKeys : keys->keys) {
        if (eightKeys != 0) {
            return true;
        }
    }
    return false;
}

bool TestDesktop::waitForFreeKeyboard(milliseconds budget) {
    return waitUntil([this] { return keyboardIsFree(); }, budget);
}

bool TestDesktop::waitForUntouchedKeyboard(milliseconds budget) {
    return waitUntil([this] { return !anyKeyIsDown() && keyboardIsFree(); }, budget);
}

bool TestDesktop::keyboardIsFree() const {
    const auto cookie =
        xcb_grab_keyboard(connection_, 0, root(), XCB_CURRENT_TIME, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC);
    // Both requests are sent together, so that the grab does not block another client's for long.
    xcb_ungrab_keyboard(connection_, XCB_CURRENT_TIME);
    const XcbReply<xcb_grab_keyboard_reply_t> reply(xcb_grab_keyboard_reply(connection_, cookie, nullptr));
    return reply && reply->status == XCB_GRAB_STATUS_SUCCESS;
}

namespace {

std::vector<xcb_window_t> childrenOf(xcb_connection_t* connection, xcb_window_t window) {
    const XcbReply<xcb_query_tree_reply_t> tree(
        xcb_query_tree_reply(connection, xcb_query_tree(connection, window), nullptr));
    if (!tree) {
        return {};
    }
    const std::span children(xcb_query_tree_children(tree.get()),
                             static_cast<std::size_t>(xcb_query_tree_children_length(tree.get())));
    return {children.begin(), children.end()};
}

bool isIcon(const TestDesktop& desktop, xcb_window_t window) {
    // The program's Qt windows might be children of another window too.
    const auto clients = desktop.clientList();
    return std::ranges::find(clients, window) == clients.end() &&
           desktop.text(window, "WM_CLASS").find("ferrowyn") != std::string::npos &&
           !desktop.cardinals(window, "_XEMBED_INFO").empty() && desktop.isViewable(window);
}

}  // namespace

std::optional<TestDesktop::Place> embeddedTrayIcon(const TestDesktop& desktop) {
    // A tray reparents icons into its window or a child of it. Before that, the icon is a child of the root.
    auto inside = childrenOf(desktop.connection(), desktop.root());
    while (!inside.empty()) {
        std::vector<xcb_window_t> deeper;
        for (const auto parent : inside) {
            const auto children = childrenOf(desktop.connection(), parent);
            deeper.insert(deeper.end(), children.begin(), children.end());
        }
        for (const auto window : deeper) {
            if (isIcon(desktop, window)) {
                return desktop.placeOf(window);
            }
        }
        inside = deeper;
    }
    return std::nullopt;
}

}  // namespace ferrowyn::x11test

#include "platform/x11/x11_screens.h"

#include <QGuiApplication>
#include <QScreen>
#include <algorithm>
#include <utility>

#include "platform/x11/x11_connection.h"
#include "platform/x11/x11_root_properties.h"
#include "platform/x11/xcb_reply.h"

namespace ferrowyn {

namespace {

struct Edges {
    int left, top, right, bottom;
    [[nodiscard]] bool isEmpty() const { return left >= right || top >= bottom; }
};

bool overlap(int start, int end, int otherStart, int otherEnd) {
    return start < otherEnd && otherStart < end;
}

}  // namespace

X11PixelRect visiblePart(const X11PixelRect& monitor, const std::vector<X11Strut>& struts, int rootWidth,
                         int rootHeight) {
    Edges part{monitor.x, monitor.y, monitor.x + monitor.width, monitor.y + monitor.height};
    const Edges whole = part;
    const auto reserve = [&part](bool concerns, int Edges::*edge, int limit, bool isLowerEdge) {
        Edges reduced = part;
        reduced.*edge = isLowerEdge ? std::max(part.*edge, limit) : std::min(part.*edge, limit);
        if (concerns && !reduced.isEmpty()) {
            part = reduced;
        }
    };
    for (const auto& strut : struts) {
        reserve(strut.left > 0 && overlap(strut.leftStart, strut.leftEnd + 1, whole.top, whole.bottom), &Edges::left,
                strut.left, true);
        reserve(strut.right > 0 && overlap(strut.rightStart, strut.rightEnd + 1, whole.top, whole.bottom),
                &Edges::right, rootWidth - strut.right, false);
        reserve(strut.top > 0 && overlap(strut.topStart, strut.topEnd + 1, whole.left, whole.right), &Edges::top,
                strut.top, true);
        reserve(strut.bottom > 0 && overlap(strut.bottomStart, strut.bottomEnd + 1, whole.left, whole.right),
                &Edges::bottom, rootHeight - strut.bottom, false);
    }
    return {part.left, part.top, part.right - part.left, part.bottom - part.top};
}

X11PixelRect intersection(const X11PixelRect& one, const X11PixelRect& other) {
    const int left = std::max(one.x, other.x);
    const int top = std::max(one.y, other.y);
    const int right = std::min(one.x + one.width, other.x + other.width);
    const int bottom = std::min(one.y + one.height, other.y + other.height);
    return {left, top, std::max(right - left, 0), std::max(bottom - top, 0)};
}

namespace {

/// Four numbers for each desktop.
constexpr std::uint32_t maximumWorkAreaLength = 4096;

/// Limits a number from a property, which any client can write, to the largest coordinate of X.
int coordinate(std::uint32_t value) {
    return static_cast<int>(std::min(value, 0x7FFFU));
}

std::optional<X11Strut> strutOf(const X11Property& partial, const X11Property& whole, int rootWidth, int rootHeight) {
    X11Strut strut;
    if (const auto items = partial.items(XCB_ATOM_CARDINAL); items.size() >= 12) {
        strut = {coordinate(items[0]), coordinate(items[1]), coordinate(items[2]),  coordinate(items[3]),
                 coordinate(items[4]), coordinate(items[5]), coordinate(items[6]),  coordinate(items[7]),
                 coordinate(items[8]), coordinate(items[9]), coordinate(items[10]), coordinate(items[11])};
    } else if (const auto edges = whole.items(XCB_ATOM_CARDINAL); edges.size() >= 4) {
        strut = {coordinate(edges[0]),
                 coordinate(edges[1]),
                 coordinate(edges[2]),
                 coordinate(edges[3]),
                 0,
                 rootHeight - 1,
                 0,
                 rootHeight - 1,
                 0,
                 rootWidth - 1,
                 0,
                 rootWidth - 1};
    }
    const bool reservesNothing = strut.left == 0 && strut.right == 0 && strut.top == 0 && strut.bottom == 0;
    return reservesNothing ? std::nullopt : std::optional(strut);
}

}  // namespace

X11Screens::X11Screens(X11EventConnection& events) : events_(events) {
    atoms_ = events_.connection().internAtoms({"_NET_WORKAREA", "_NET_CURRENT_DESKTOP", "_NET_CLIENT_LIST",
                                               "_NET_ACTIVE_WINDOW", "_NET_WM_STRUT_PARTIAL", "_NET_WM_STRUT"});
    startListening();
    // This waits for the replies, because nothing can be shown before the screens are known.
    collect(request());
    collectStruts(requestStruts());
    arrange();
    readFocus();
}

std::vector<Screen> X11Screens::all() const {
    std::vector<Screen> screens;
    screens.reserve(monitors_.size());
    for (const auto& monitor : monitors_) {
        screens.push_back(screenOf(monitor));
    }
    return screens;
}

std::optional<Screen> X11Screens::main() const {
    if (monitors_.empty()) {
        return std::nullopt;
    }
    if (focusedWindow_) {
        const int x = focusedWindow_->x + focusedWindow_->width / 2;
        const int y = focusedWindow_->y + focusedWindow_->height / 2;
        const auto focused = std::ranges::find_if(monitors_, [&](const auto& one) { return one.frame.contains(x, y); });
        if (focused != monitors_.end()) {
            return screenOf(*focused);
        }
    }
    const auto primary = std::ranges::find_if(monitors_, &Monitor::isPrimary);
    return screenOf(primary != monitors_.end() ? *primary : monitors_.front());
}

X11Coordinates X11Screens::coordinates() const {
    X11Coordinates coordinates;
    if (const QScreen* const screen = QGuiApplication::primaryScreen()) {
        coordinates.scale = screen->devicePixelRatio();
    }
    if (!monitors_.empty()) {
        const auto primary = std::ranges::find_if(monitors_, &Monitor::isPrimary);
        const X11PixelRect& frame = primary != monitors_.end() ? primary->frame : monitors_.front().frame;
        coordinates.originX = frame.x;
        coordinates.originY = frame.y + frame.height;
    }
    return coordinates;
}

Subscription X11Screens::observe(std::function<void()> handler) const {
    return changes_.subscribe([handler = std::move(handler)](const bool&) { handler(); });
}

void X11Screens::startListening() {
    const auto* const extension = xcb_get_extension_data(events_.get(), &xcb_randr_id);
    if (extension != nullptr && extension->present != 0) {
        const XcbReply<xcb_randr_query_version_reply_t> version(
            xcb_randr_query_version_reply(events_.get(), xcb_randr_query_version(events_.get(), 1, 5), nullptr));
        // Older versions have no monitors; then the root window counts as one.
        hasRandr_ = version && (version->major_version > 1 || version->minor_version >= 5);
    }
    const auto* const xinerama = xcb_get_extension_data(events_.get(), &xcb_xinerama_id);
    if (xinerama != nullptr && xinerama->present != 0) {
        const XcbReply<xcb_xinerama_is_active_reply_t> active(
            xcb_xinerama_is_active_reply(events_.get(), xcb_xinerama_is_active(events_.get()), nullptr));
        hasXinerama_ = active && active->state != 0;
    }
    eventSubscription_ = events_.observe([this](const xcb_generic_event_t& event) { handle(event); });
}

void X11Screens::handle(const xcb_generic_event_t& event) {
    const auto type = typeOf(event);
    if (type == XCB_PROPERTY_NOTIFY) {
        const auto& change = reinterpret_cast<const xcb_property_notify_event_t&>(event);
        if (change.window != events_.root()) {
            return;
        }
        if (change.atom == atoms_[activeWindow]) {
            readFocus();
        } else if (change.atom == atoms_[workArea]) {
            struts_.clear();  // the manager computes the work area from the struts, so one of them has changed
            readAgain();
        } else if (change.atom == atoms_[clientList] || change.atom == atoms_[currentDesktop]) {
            readAgain();
        }
    } else if (type == XCB_CONFIGURE_NOTIFY) {
        const auto& change = reinterpret_cast<const xcb_configure_notify_event_t&>(event);
        if (change.window == events_.root()) {
            readAgain();
        }
    } else if (events_.isScreenChange(event)) {
        readAgain();
    }
}

/// One reading at a time. A change during a reading starts another one after it.
void X11Screens::readAgain() {
    if (isReading_) {
        isStale_ = true;
        return;
    }
    isReading_ = true;
    isStale_ = false;
    events_.whenAnswered([this, requests = request()] {
        collect(requests);
        events_.whenAnswered([this, strutRequests = requestStruts()] {
            collectStruts(strutRequests);
            arrange();
            isReading_ = false;
            if (isStale_) {
                readAgain();
            }
        });
    });
}

X11Screens::Requests X11Screens::request() const {
    Requests requests{};
    if (hasRandr_) {
        requests.monitors = xcb_randr_get_monitors(events_.get(), events_.root(), 1);
    }
    if (hasXinerama_) {
        requests.heads = xcb_xinerama_query_screens(events_.get());
    }
    requests.root = xcb_get_geometry(events_.get(), events_.root());
    requests.workArea = requestProperty(events_.root(), workArea, maximumWorkAreaLength);
    requests.currentDesktop = requestProperty(events_.root(), currentDesktop, 1);
    requests.clients = requestProperty(events_.root(), clientList, maximumWindowListLength);
    return requests;
}

void X11Screens::collect(const Requests& requests) {
    collectMonitors(requests);
    const auto areas = X11Property::collect(events_.get(), requests.workArea);
    const auto numbers = areas.items(XCB_ATOM_CARDINAL);
    workAreas_.clear();
    for (std::size_t index = 0; index + 4 <= numbers.size(); index += 4) {
        workAreas_.push_back({coordinate(numbers[index]), coordinate(numbers[index + 1]),
                              coordinate(numbers[index + 2]), coordinate(numbers[index + 3])});
    }
    desktop_ = X11Property::collect(events_.get(), requests.currentDesktop).item(XCB_ATOM_CARDINAL).value_or(0);
    const auto list = X11Property::collect(events_.get(), requests.clients);
    clients_ = windowsNamedBy(list, events_.root());
}

void X11Screens::collectMonitors(const Requests& requests) {
    const XcbReply<xcb_get_geometry_reply_t> root(xcb_get_geometry_reply(events_.get(), requests.root, nullptr));
    if (root) {
        rootWidth_ = root->width;
        rootHeight_ = root->height;
    }
    auto found = collectFrames(requests);
    // Their visible parts are computed when the struts are known. Until then a known monitor keeps its old one.
    for (auto& monitor : found) {
        const auto known = std::ranges::find(monitors_, monitor.frame, &Monitor::frame);
        if (known != monitors_.end()) {
            monitor.visibleFrame = known->visibleFrame;
        }
    }
    if (found != monitors_) {
        monitors_ = std::move(found);
        changes_.send(true);
    }
}

std::vector<X11Screens::Monitor> X11Screens::collectFrames(const Requests& requests) const {
    std::vector<Monitor> found;
    if (requests.monitors) {
        const XcbReply<xcb_randr_get_monitors_reply_t> reply(
            xcb_randr_get_monitors_reply(events_.get(), *requests.monitors, nullptr));
        for (auto each = reply ? xcb_randr_get_monitors_monitors_iterator(reply.get())
                               : xcb_randr_monitor_info_iterator_t{};
             each.rem > 0; xcb_randr_monitor_info_next(&each)) {
            const X11PixelRect frame{each.data->x, each.data->y, each.data->width, each.data->height};
            found.push_back({frame, frame, each.data->primary != 0});
        }
    }
    if (requests.heads) {
        const XcbReply<xcb_xinerama_query_screens_reply_t> reply(
            xcb_xinerama_query_screens_reply(events_.get(), *requests.heads, nullptr));
        const int count = reply ? xcb_xinerama_query_screens_screen_info_length(reply.get()) : 0;
        if (count > static_cast<int>(found.size())) {
            found.clear();
            const auto* const heads = xcb_xinerama_query_screens_screen_info(reply.get());
            for (int index = 0; index < count; ++index) {
                const X11PixelRect frame{heads[index].x_org, heads[index].y_org, heads[index].width,
                                         heads[index].height};
                found.push_back({frame, frame, index == 0});
            }
        }
    }
    if (found.empty() && rootWidth_ > 0) {
        const X11PixelRect frame{0, 0, rootWidth_, rootHeight_};
        found.push_back({frame, frame, true});
    }
    return found;
}

std::vector<X11Screens::StrutRequest> X11Screens::requestStruts() const {
    std::vector<StrutRequest> requests;
    for (const auto window : clients_) {
        if (!struts_.contains(window)) {
            requests.push_back({window, requestProperty(window, strutPartial, 12), requestProperty(window, strut, 4)});
        }
    }
    return requests;
}

void X11Screens::collectStruts(const std::vector<StrutRequest>& requests) {
    for (const auto& request : requests) {
        const auto partial = X11Property::collect(events_.get(), request.partial);
        const auto whole = X11Property::collect(events_.get(), request.whole);
        struts_[request.window] = strutOf(partial, whole, rootWidth_, rootHeight_);
    }
    std::erase_if(struts_,
                  [this](const auto& entry) { return std::ranges::find(clients_, entry.first) == clients_.end(); });
}

void X11Screens::arrange() {
    std::vector<X11Strut> reserved;
    for (const auto& [window, reserve] : struts_) {
        if (reserve) {
            reserved.push_back(*reserve);
        }
    }
    auto arranged = monitors_;
    for (auto& monitor : arranged) {
        monitor.visibleFrame = visiblePart(monitor.frame, reserved, rootWidth_, rootHeight_);
        // Some desktops draw their bars without windows and publish only the work area. It is one rectangle for all
        // monitors, so struts are more exact and come first.
        if (reserved.empty() && desktop_ < workAreas_.size()) {
            const auto left = intersection(monitor.frame, workAreas_[desktop_]);
            if (left.width > 0 && left.height > 0) {
                monitor.visibleFrame = left;
            }
        }
    }
    if (arranged != monitors_) {
        monitors_ = std::move(arranged);
        changes_.send(true);
    }
}

void X11Screens::readFocus() {
    const auto active = requestProperty(events_.root(), activeWindow, 1);
    events_.whenAnswered([this, active] {
        const auto window = X11Property::collect(events_.get(), active).item(XCB_ATOM_WINDOW).value_or(0);
        if (window == XCB_WINDOW_NONE) {
            return;  // several managers set None for a moment at each switch
        }
        const auto geometry = xcb_get_geometry(events_.get(), window);
        const auto place = xcb_translate_coordinates(events_.get(), window, events_.root(), 0, 0);
        events_.whenAnswered([this, geometry, place] {
            const XcbReply<xcb_get_geometry_reply_t> size(xcb_get_geometry_reply(events_.get(), geometry, nullptr));
            const XcbReply<xcb_translate_coordinates_reply_t> corner(
                xcb_translate_coordinates_reply(events_.get(), place, nullptr));
            if (size && corner) {
                focusedWindow_ = {corner->dst_x, corner->dst_y, size->width, size->height};
            }
        });
    });
}

xcb_get_property_cookie_t X11Screens::requestProperty(xcb_window_t window, Atom name, std::uint32_t length) const {
    return xcb_get_property(events_.get(), 0, window, atoms_[name], XCB_GET_PROPERTY_TYPE_ANY, 0, length);
}

Screen X11Screens::screenOf(const Monitor& monitor) const {
    const auto here = coordinates();
    return {here.toPoints(monitor.frame), here.toPoints(monitor.visibleFrame)};
}

}  // namespace ferrowyn

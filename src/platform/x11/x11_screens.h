#pragma once

#include <xcb/randr.h>
#include <xcb/xinerama.h>

#include <cmath>
#include <functional>
#include <optional>
#include <unordered_map>
#include <vector>

#include "core/geometry.h"
#include "core/published.h"
#include "platform/screens.h"
#include "platform/x11/x11_event_connection.h"

namespace ferrowyn {

/// A rectangle in device pixels on the root window. y grows downward.
struct X11PixelRect {
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;

    [[nodiscard]] bool contains(int pointX, int pointY) const {
        return pointX >= x && pointX < x + width && pointY >= y && pointY < y + height;
    }
    friend bool operator==(const X11PixelRect&, const X11PixelRect&) = default;
};

/// Converts between device pixels, with the origin at the root's upper left corner and y downward, and points, with the
/// origin at the primary screen's lower left corner and y upward.
struct X11Coordinates {
    /// Device pixels per point. The same as Qt's, so that drawings have the size of their windows.
    double scale = 1;
    /// The primary screen's lower left corner, in device pixels.
    int originX = 0;
    int originY = 0;

    [[nodiscard]] Point toPoints(int x, int y) const { return {(x - originX) / scale, (originY - y) / scale}; }
    [[nodiscard]] Rect toPoints(const X11PixelRect& pixels) const {
        const Point lowerLeft = toPoints(pixels.x, pixels.y + pixels.height);
        return {lowerLeft.x, lowerLeft.y, pixels.width / scale, pixels.height / scale};
    }
    /// Rounds to the nearest pixel. The size is rounded separately, as Qt does, so that it does not depend on the
    /// position.
    [[nodiscard]] X11PixelRect toPixels(const Rect& points) const {
        const auto nearest = [](double value) { return static_cast<int>(std::lround(value)); };
        return {originX + nearest(points.x * scale), originY - nearest(points.maxY() * scale),
                nearest(points.width * scale), nearest(points.height * scale)};
    }

    friend bool operator==(const X11Coordinates&, const X11Coordinates&) = default;
};

/// The strips that a dock reserves at the edges of the root window: for each edge the width in device pixels, and the
/// range (inclusive) along the edge.
struct X11Strut {
    int left = 0, right = 0, top = 0, bottom = 0;
    int leftStart = 0, leftEnd = 0, rightStart = 0, rightEnd = 0;
    int topStart = 0, topEnd = 0, bottomStart = 0, bottomEnd = 0;
};

/// The part of a monitor that no dock covers. A strut that would leave nothing is ignored: it belongs to a dock at the
/// edge between this monitor and another one.
[[nodiscard]] X11PixelRect visiblePart(const X11PixelRect& monitor, const std::vector<X11Strut>& struts, int rootWidth,
                                       int rootHeight);

/// The common part of both; width or height is 0 when there is none.
[[nodiscard]] X11PixelRect intersection(const X11PixelRect& one, const X11PixelRect& other);

/// The monitors that RandR or Xinerama report, and the parts of them that docks leave free. Main thread. The
/// constructor waits for the server; later readings follow its events and do not wait.
class X11Screens final : public Screens {
public:
    /// `events` outlives this.
    explicit X11Screens(X11EventConnection& events);

    [[nodiscard]] std::vector<Screen> all() const override;
    [[nodiscard]] std::optional<Screen> main() const override;

    [[nodiscard]] Subscription observe(std::function<void()> handler) const override;

    [[nodiscard]] X11Coordinates coordinates() const;

private:
    struct Monitor {
        X11PixelRect frame;
        X11PixelRect visibleFrame;
        bool isPrimary = false;
        friend bool operator==(const Monitor&, const Monitor&) = default;
    };
    struct Requests {
        std::optional<xcb_randr_get_monitors_cookie_t> monitors;
        std::optional<xcb_xinerama_query_screens_cookie_t> heads;
        xcb_get_geometry_cookie_t root;
        xcb_get_property_cookie_t workArea;
        xcb_get_property_cookie_t currentDesktop;
        xcb_get_property_cookie_t clients;
    };
    struct StrutRequest {
        xcb_window_t window;
        xcb_get_property_cookie_t partial;
        xcb_get_property_cookie_t whole;
    };
    enum Atom { workArea, currentDesktop, clientList, activeWindow, strutPartial, strut, atomCount };

    void startListening();
    void handle(const xcb_generic_event_t& event);
    void readAgain();
    [[nodiscard]] Requests request() const;
    void collect(const Requests& requests);
    void collectMonitors(const Requests& requests);
    [[nodiscard]] std::vector<Monitor> collectFrames(const Requests& requests) const;
    [[nodiscard]] std::vector<StrutRequest> requestStruts() const;
    void collectStruts(const std::vector<StrutRequest>& requests);
    void arrange();
    void readFocus();
    [[nodiscard]] xcb_get_property_cookie_t requestProperty(xcb_window_t window, Atom name, std::uint32_t length) const;
    [[nodiscard]] Screen screenOf(const Monitor& monitor) const;

    X11EventConnection& events_;
    std::vector<xcb_atom_t> atoms_;
    bool hasRandr_ = false;
    /// Some servers join several screens with Xinerama only; RandR then reports one.
    bool hasXinerama_ = false;

    int rootWidth_ = 0;
    int rootHeight_ = 0;
    std::vector<Monitor> monitors_;
    std::vector<X11PixelRect> workAreas_;
    std::size_t desktop_ = 0;
    std::vector<xcb_window_t> clients_;
    /// The strut of each listed window; nullopt when it has none.
    std::unordered_map<xcb_window_t, std::optional<X11Strut>> struts_;
    std::optional<X11PixelRect> focusedWindow_;

    bool isReading_ = false;
    bool isStale_ = false;
    Subject<bool> changes_;
    Subscription eventSubscription_;
};

}  // namespace ferrowyn

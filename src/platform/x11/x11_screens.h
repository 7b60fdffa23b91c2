#pragma once

#include <xcb/randr.h>
#include <xcb/xinerama.h>

#include <functional>
#include <optional>
#include <unordered_map>
#include <vector>

#include "core/published.h"
#include "platform/screens.h"
#include "platform/x11/x11_panel_events.h"
#include "platform/x11/x11_screens_coordinates.h"
#include "platform/x11/x11_screens_layout.h"

namespace ferrowyn {

/// The monitors as RandR names them, less the docks' struts. Main thread. The first reading waits for the server, later
/// ones follow its events and do not.
class X11Screens final : public Screens {
public:
    /// `events` outlives this.
    explicit X11Screens(X11PanelEvents& events);

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

    X11PanelEvents& events_;
    std::vector<xcb_atom_t> atoms_;
    bool hasRandr_ = false;
    /// A server that joins several screens into one in the old way; its RandR knows nothing of them.
    bool hasXinerama_ = false;
    std::uint8_t randrFirstEvent_ = 0;

    int rootWidth_ = 0;
    int rootHeight_ = 0;
    std::vector<Monitor> monitors_;
    std::vector<X11PixelRect> workAreas_;
    std::size_t desktop_ = 0;
    std::vector<xcb_window_t> clients_;
    /// What each listed window keeps free; no value for one that keeps nothing.
    std::unordered_map<xcb_window_t, std::optional<X11Strut>> struts_;
    std::optional<X11PixelRect> focusedWindow_;

    bool isReading_ = false;
    bool isStale_ = false;
    Subject<bool> changes_;
    Subscription eventSubscription_;
};

}  // namespace ferrowyn

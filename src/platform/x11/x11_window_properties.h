#pragma once

#include <xcb/xcb.h>

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <unordered_map>
#include <vector>

#include "core/app_window.h"
#include "core/geometry.h"
#include "platform/x11/x11_owners.h"
#include "platform/x11/x11_root_properties.h"

namespace ferrowyn {

/// By what a window says which application it belongs to; empty is what it does not say.
struct X11ApplicationIdentity {
    /// The application's own idea of its desktop file's name, without the suffix (GTK).
    std::string gtkApplicationId;
    /// The same by Qt and KDE, with or without path and suffix.
    std::string kdeDesktopFile;
    std::string wmClassInstance;
    std::string wmClassName;

    friend bool operator==(const X11ApplicationIdentity&, const X11ApplicationIdentity&) = default;
};

/// What a window is to the user, as its type says.
enum class X11WindowKind {
    normal,
    dialog,
    desktop,
    dock,
    /// Toolbars, palettes, splash screens: windows of their own, but not ones to switch to.
    auxiliary,
    /// Menus, tooltips, notifications: above everything and soon gone.
    transitory,
};

/// One client window as its properties describe it.
struct X11WindowFacts {
    xcb_window_t id = XCB_WINDOW_NONE;
    /// The owner's process, or a number that stands for a client without one (`X11Owners`).
    Pid process = 0;
    /// The number of the application, which may be several processes or share one (`X11ApplicationDirectory`). Given
    /// when all windows are known, not when this one is read.
    Pid pid = 0;
    X11WindowKind kind = X11WindowKind::normal;
    /// Belongs to another window, as a dialog does.
    bool isTransient = false;
    /// The window that it belongs to: the root window where it belongs to all of its group, none where it does not say.
    xcb_window_t transientFor = XCB_WINDOW_NONE;
    /// The window that stands for the group of windows that this one is part of.
    xcb_window_t group = XCB_WINDOW_NONE;
    /// Takes the input of the window that it belongs to, or of its whole group.
    bool isModal = false;
    bool skipsTaskbar = false;
    bool isHidden = false;
    bool isFullScreen = false;
    bool isAlwaysOnTop = false;
    bool isMapped = false;
    /// Absent where the manager has no desktops; `onAllDesktops` for a sticky window.
    std::optional<std::uint32_t> desktop;
    /// 0 to 1; absent when the window does not say.
    std::optional<double> opacity;
    /// Device pixels in root coordinates; absent when the window vanished while it was asked.
    std::optional<Rect> frame;
    std::string title;
    X11ApplicationIdentity identity;

    static constexpr std::uint32_t onAllDesktops = 0xFFFFFFFF;

    [[nodiscard]] bool isDesktopElement() const {
        return kind == X11WindowKind::desktop || kind == X11WindowKind::dock;
    }
    /// Whether the window is on this desktop; true where there are no desktops.
    [[nodiscard]] bool isOnDesktop(std::optional<std::uint32_t> current) const {
        return !desktop || !current || *desktop == onAllDesktops || *desktop == *current;
    }
};

/// The kind that the type property asks for: the first type in the list that is known, else what being transient says.
[[nodiscard]] X11WindowKind windowKind(std::span<const std::uint32_t> types, bool isTransient, const X11Atoms& atoms);

/// "AXStandardWindow", "AXDialog", or another subrole for what a user does not switch to.
[[nodiscard]] std::string subroleOf(const X11WindowFacts& window);

/// 0 for windows to switch to, "always on top" ones included: the user still wants to reach those.
[[nodiscard]] std::int64_t layerOf(const X11WindowFacts& window);

/// Shown on the desktop in front of the user.
[[nodiscard]] bool isOnScreen(const X11WindowFacts& window, std::optional<std::uint32_t> currentDesktop);

/// The requests for one window's facts, sent when this is made; collecting waits for the answers. Making those of all
/// windows before collecting the first is what keeps a snapshot at a fixed number of round trips.
///
/// The owner is not among them: clients are asked for in bulk (`X11Owners`).
class X11WindowRequests {
public:
    /// What is `known` of the window from an earlier reading saves asking again for what rarely changes; null when
    /// nothing is. Copied by `collect`, so it lives until then.
    X11WindowRequests(xcb_connection_t* connection, xcb_window_t window, const X11RootFacts& root,
                      const X11Atoms& atoms, const X11WindowFacts* known);

    /// Nothing when the window has vanished. An absent `_NET_WM_NAME` leaves the title empty and sets `lacksTitle`.
    struct Answer {
        X11WindowFacts facts;
        bool lacksTitle = false;
    };
    [[nodiscard]] std::optional<Answer> collect(xcb_connection_t* connection, const X11Atoms& atoms) const;
    [[nodiscard]] bool isKnown() const { return known_ != nullptr; }

private:
    /// What a window says once, as a rule before it is shown.
    struct Lasting {
        xcb_get_property_cookie_t type;
        xcb_get_property_cookie_t transientFor;
        xcb_get_property_cookie_t hints;
        xcb_get_property_cookie_t opacity;
        xcb_get_property_cookie_t wmClass;
        xcb_get_property_cookie_t gtkApplicationId;
        xcb_get_property_cookie_t kdeDesktopFile;
    };
    void collectLasting(xcb_connection_t* connection, const X11Atoms& atoms, X11WindowFacts& facts) const;

    xcb_window_t window_;
    xcb_get_window_attributes_cookie_t attributes_;
    xcb_get_geometry_cookie_t geometry_;
    xcb_translate_coordinates_cookie_t position_;
    xcb_get_property_cookie_t state_;
    xcb_get_property_cookie_t desktop_;
    xcb_get_property_cookie_t name_;
    const X11WindowFacts* known_;
    std::optional<Lasting> lasting_;
    /// Only where the manager does not tell minimised windows in the newer way.
    std::optional<xcb_get_property_cookie_t> wmState_;
};

/// The request for a title of before `_NET_WM_NAME`.
[[nodiscard]] xcb_get_property_cookie_t requestLegacyTitle(xcb_connection_t* connection, xcb_window_t window);
[[nodiscard]] std::string collectLegacyTitle(xcb_connection_t* connection, xcb_get_property_cookie_t cookie,
                                             const X11Atoms& atoms);

/// The facts of many windows at once: everything is asked for when this is made, and waited for when it is collected.
class X11WindowBatch {
public:
    /// When to ask for what only few windows need: the title and the process number in their old forms.
    enum class Fallbacks {
        /// After the answers that show which windows need them: one more round trip, and far fewer requests.
        whenNeeded,
        /// With everything else, and the process number alone, so that collecting never waits a second time.
        atOnceWithoutTitles,
    };

    using KnownWindows = std::unordered_map<xcb_window_t, X11WindowFacts>;

    /// `known` as in `X11WindowRequests`; it outlives this.
    X11WindowBatch(xcb_connection_t* connection, const X11RootFacts& root, const X11Atoms& atoms,
                   const X11Owners& owners, const std::vector<xcb_window_t>& windows, Fallbacks fallbacks,
                   const KnownWindows& known);

    struct Answer {
        /// In the order of the windows asked for, without those that have vanished.
        std::vector<X11WindowFacts> windows;
        int roundTrips = 0;
    };
    /// Once.
    [[nodiscard]] Answer collect();

private:
    /// A window that needs one of the old forms: where it is in the answer, and what was asked.
    struct Fallback {
        std::size_t index = 0;
        std::optional<xcb_get_property_cookie_t> title;
        std::optional<X11Owners::Claim> claim;
    };
    void collectFallbacks(const std::vector<Fallback>& fallbacks, std::vector<X11WindowFacts>& windows) const;

    xcb_connection_t* connection_;
    const X11Atoms& atoms_;
    const X11Owners& owners_;
    std::vector<X11WindowRequests> requests_;
    std::optional<xcb_res_query_client_ids_cookie_t> ownerRequest_;
    std::vector<X11Owners::Claim> claims_;
};

}  // namespace ferrowyn

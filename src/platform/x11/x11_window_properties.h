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

/// The properties with which a window names its application. A missing property is empty.
struct X11ApplicationIdentity {
    /// The name of the desktop file without the suffix, set by GTK.
    std::string gtkApplicationId;
    /// The name of the desktop file, with or without path and suffix, set by Qt and KDE.
    std::string kdeDesktopFile;
    std::string wmClassInstance;
    std::string wmClassName;

    friend bool operator==(const X11ApplicationIdentity&, const X11ApplicationIdentity&) = default;
};

/// The kind of a window, from its type.
enum class X11WindowKind {
    normal,
    dialog,
    desktop,
    dock,
    /// Toolbars, palettes, splash screens: separate windows, but not ones to switch to.
    auxiliary,
    /// Menus, tooltips, notifications: above all other windows and only for a short time.
    transitory,
};

/// One client window as its properties describe it.
struct X11WindowFacts {
    xcb_window_t id = XCB_WINDOW_NONE;
    /// The owner's process, or a stand-in (`X11Owners`).
    Pid process = 0;
    /// The number of the application (`X11ApplicationDirectory`); 0 until all windows are known.
    Pid pid = 0;
    X11WindowKind kind = X11WindowKind::normal;
    /// Belongs to another window, as a dialog does.
    bool isTransient = false;
    /// The parent window. The root window means the whole group; None means that the property is missing.
    xcb_window_t transientFor = XCB_WINDOW_NONE;
    /// The leader window of its window group; None without a group.
    xcb_window_t group = XCB_WINDOW_NONE;
    /// Blocks its parent window, or its whole group.
    bool isModal = false;
    bool skipsTaskbar = false;
    bool isHidden = false;
    bool isFullScreen = false;
    bool isAlwaysOnTop = false;
    bool isMapped = false;
    /// nullopt when the manager has no desktops; `onAllDesktops` for a sticky window.
    std::optional<std::uint32_t> desktop;
    /// 0 to 1; nullopt when the property is missing.
    std::optional<double> opacity;
    /// In device pixels and root coordinates; nullopt when the window was destroyed during the reading.
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

/// How many parents of dialogs are followed. A longer chain is a cycle, which any client can make.
inline constexpr int deepestDialogNesting = 16;

/// The kind for the first known type in the list. Without one, a transient window is a dialog and another one is
/// normal.
[[nodiscard]] X11WindowKind windowKind(std::span<const std::uint32_t> types, bool isTransient, const X11Atoms& atoms);

/// "AXStandardWindow", "AXDialog", or another subrole for windows that a user does not switch to.
[[nodiscard]] std::string subroleOf(const X11WindowFacts& window);

/// 0 for windows to switch to, including those that are always on top.
[[nodiscard]] std::int64_t layerOf(const X11WindowFacts& window);

/// Whether the window is shown on the current desktop.
[[nodiscard]] bool isOnScreen(const X11WindowFacts& window, std::optional<std::uint32_t> currentDesktop);

/// The requests for one window's facts. The constructor sends them; `collect` waits for the replies. To keep the number
/// of round trips fixed, make the requests for all windows before collecting the first.
///
/// The owners are requested separately, for all windows together (`X11Owners`).
class X11WindowRequests {
public:
    /// `known` are the window's facts from an earlier reading, or null. Facts that rarely change are taken from it
    /// instead of being requested. It lives until `collect` returns.
    X11WindowRequests(xcb_connection_t* connection, xcb_window_t window, const X11RootFacts& root,
                      const X11Atoms& atoms, const X11WindowFacts* known);

    struct Answer {
        X11WindowFacts facts;
        /// There is no `_NET_WM_NAME`, and the title is empty.
        bool lacksTitle = false;
    };
    /// nullopt when the window was destroyed.
    [[nodiscard]] std::optional<Answer> collect(xcb_connection_t* connection, const X11Atoms& atoms) const;
    [[nodiscard]] bool isKnown() const { return known_ != nullptr; }

private:
    /// Properties that rarely change; most clients set them before the window is shown.
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
    /// Only when the manager does not support `_NET_WM_STATE_HIDDEN`.
    std::optional<xcb_get_property_cookie_t> wmState_;
};

/// Requests WM_NAME, the title of clients that do not set `_NET_WM_NAME`.
[[nodiscard]] xcb_get_property_cookie_t requestLegacyTitle(xcb_connection_t* connection, xcb_window_t window);
[[nodiscard]] std::string collectLegacyTitle(xcb_connection_t* connection, xcb_get_property_cookie_t cookie,
                                             const X11Atoms& atoms);

/// Reads the facts of many windows together. The constructor sends all requests; `collect` waits for the replies.
class X11WindowBatch {
public:
    /// When to request WM_NAME and `_NET_WM_PID`, which only few windows need.
    enum class Fallbacks {
        /// After the replies that show which windows need them: one more round trip, but far fewer requests.
        whenNeeded,
        /// Requests `_NET_WM_PID` of all windows with the rest and never WM_NAME, so `collect` waits only once.
        atOnceWithoutTitles,
    };

    using KnownWindows = std::unordered_map<xcb_window_t, X11WindowFacts>;

    /// `known` is as in `X11WindowRequests` and outlives this, as do the other references.
    X11WindowBatch(xcb_connection_t* connection, const X11RootFacts& root, const X11Atoms& atoms,
                   const X11Owners& owners, const std::vector<xcb_window_t>& windows, Fallbacks fallbacks,
                   const KnownWindows& known);

    struct Answer {
        /// In the order of the requested windows, without those that were destroyed.
        std::vector<X11WindowFacts> windows;
        int roundTrips = 0;
    };
    /// Call it once.
    [[nodiscard]] Answer collect();

private:
    /// The further requests for one window, and its index in the answer.
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

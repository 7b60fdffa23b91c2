#pragma once

#include <xcb/xcb.h>

#include <cstdint>
#include <optional>
#include <span>
#include <string>
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
    X11WindowRequests(xcb_connection_t* connection, xcb_window_t window, const X11RootFacts& root,
                      const X11Atoms& atoms);

    /// nullopt when the window was destroyed.
    [[nodiscard]] std::optional<X11WindowFacts> collect(xcb_connection_t* connection, const X11Atoms& atoms) const;

private:
    xcb_window_t window_;
    xcb_get_window_attributes_cookie_t attributes_;
    xcb_get_geometry_cookie_t geometry_;
    xcb_translate_coordinates_cookie_t position_;
    xcb_get_property_cookie_t state_;
    xcb_get_property_cookie_t desktop_;
    xcb_get_property_cookie_t name_;
    xcb_get_property_cookie_t legacyName_;
    xcb_get_property_cookie_t type_;
    xcb_get_property_cookie_t transientFor_;
    xcb_get_property_cookie_t hints_;
    xcb_get_property_cookie_t opacity_;
    xcb_get_property_cookie_t wmClass_;
    xcb_get_property_cookie_t gtkApplicationId_;
    xcb_get_property_cookie_t kdeDesktopFile_;
    /// Only when the manager does not support `_NET_WM_STATE_HIDDEN`.
    std::optional<xcb_get_property_cookie_t> wmState_;
};

/// Reads the facts of many windows together, in one round trip. The constructor sends all requests; `collect` waits for
/// the replies.
class X11WindowBatch {
public:
    /// The references outlive this.
    X11WindowBatch(xcb_connection_t* connection, const X11RootFacts& root, const X11Atoms& atoms,
                   const X11Owners& owners, const std::vector<xcb_window_t>& windows);

    /// In the order of the requested windows, without those that were destroyed. Call it once.
    [[nodiscard]] std::vector<X11WindowFacts> collect();

private:
    xcb_connection_t* connection_;
    const X11Atoms& atoms_;
    const X11Owners& owners_;
    std::vector<X11WindowRequests> requests_;
    std::optional<xcb_res_query_client_ids_cookie_t> ownerRequest_;
    std::vector<X11Owners::Claim> claims_;
};

/// Facts that may change many times a second and that nothing but a snapshot needs. An absent one has not been asked
/// for, or the window was destroyed; the title of a destroyed window is empty instead.
struct X11PassingFacts {
    std::optional<std::string> title;
    std::optional<bool> isMapped;
    std::optional<Size> size;
    /// In root coordinates.
    std::optional<Point> position;
};

/// The requests for some of one window's passing facts. The constructor sends them; `collect` waits for the replies.
class X11PassingRequests {
public:
    /// The facts that an event has reported as changed. The position has no flag: a window that is moved with its frame
    /// gets no event that can be trusted.
    enum Part : std::uint8_t { title = 1, mapping = 2, size = 4 };

    /// `parts` are flags of `Part`.
    X11PassingRequests(xcb_connection_t* connection, xcb_window_t window, xcb_window_t root, const X11Atoms& atoms,
                       std::uint8_t parts, bool asksPosition);
    [[nodiscard]] xcb_window_t window() const { return window_; }
    [[nodiscard]] X11PassingFacts collect(xcb_connection_t* connection, const X11Atoms& atoms) const;

private:
    xcb_window_t window_;
    std::optional<xcb_get_property_cookie_t> name_;
    std::optional<xcb_get_property_cookie_t> legacyName_;
    std::optional<xcb_get_window_attributes_cookie_t> attributes_;
    std::optional<xcb_get_geometry_cookie_t> geometry_;
    std::optional<xcb_translate_coordinates_cookie_t> position_;
};

}  // namespace ferrowyn

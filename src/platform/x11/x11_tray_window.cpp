#include "platform/x11/x11_tray_window.h"

#include <unistd.h>
#include <xcb/xcb_icccm.h>

#include <algorithm>
#include <array>
#include <string_view>

#include "platform/x11/x11_panel_pixmap.h"
#include "platform/x11/xcb_reply.h"

namespace ferrowyn {
namespace {

/// Until the tray has said how large icons are.
constexpr std::uint16_t firstSide = 24;
constexpr std::int32_t leastSide = 16;
/// A window with a visual of this depth has an alpha channel.
constexpr std::uint8_t alphaDepth = 32;

struct Visual {
    xcb_visualid_t id;
    std::uint8_t depth;
};

std::optional<Visual> findVisual(const xcb_screen_t* screen, xcb_visualid_t wanted) {
    for (auto depth = xcb_screen_allowed_depths_iterator(screen); depth.rem > 0; xcb_depth_next(&depth)) {
        for (auto visual = xcb_depth_visuals_iterator(depth.data); visual.rem > 0; xcb_visualtype_next(&visual)) {
            if (visual.data->visual_id == wanted) {
                return Visual{wanted, depth.data->depth};
            }
        }
    }
    return std::nullopt;
}

/// The format of pictures with straight 8-bit channels and alpha, as icons have it.
xcb_render_pictformat_t alphaFormat(const xcb_render_query_pict_formats_reply_t& formats) {
    for (auto format = xcb_render_query_pict_formats_formats_iterator(&formats); format.rem > 0;
         xcb_render_pictforminfo_next(&format)) {
        const auto& direct = format.data->direct;
        if (format.data->depth == alphaDepth && direct.alpha_shift == 24 && direct.alpha_mask == 0xFF &&
            direct.red_shift == 16 && direct.green_shift == 8 && direct.blue_shift == 0) {
            return format.data->id;
        }
    }
    return XCB_NONE;
}

xcb_render_pictformat_t formatOf(const xcb_render_query_pict_formats_reply_t& formats, xcb_visualid_t visual) {
    for (auto screen = xcb_render_query_pict_formats_screens_iterator(&formats); screen.rem > 0;
         xcb_render_pictscreen_next(&screen)) {
        for (auto depth = xcb_render_pictscreen_depths_iterator(screen.data); depth.rem > 0;
             xcb_render_pictdepth_next(&depth)) {
            const auto* const visuals = xcb_render_pictdepth_visuals(depth.data);
            const auto* const end = visuals + xcb_render_pictdepth_visuals_length(depth.data);
            const auto* const found =
                std::find_if(visuals, end, [visual](const auto& each) { return each.visual == visual; });
            if (found != end) {
                return found->format;
            }
        }
    }
    return XCB_NONE;
}

}  // namespace

X11TrayWindow::X11TrayWindow(const X11Connection& connection, std::optional<xcb_visualid_t> visual)
    : connection_(connection), width_(firstSide), height_(firstSide) {
    auto* const server = connection_.get();
    const auto* const screen = connection_.screen();
    const Visual chosen = findVisual(screen, visual.value_or(screen->root_visual))
                              .value_or(Visual{screen->root_visual, screen->root_depth});
    colormap_ = xcb_generate_id(server);
    xcb_create_colormap(server, XCB_COLORMAP_ALLOC_NONE, colormap_, screen->root, chosen.id);
    window_ = xcb_generate_id(server);
    constexpr std::uint32_t heard = XCB_EVENT_MASK_EXPOSURE | XCB_EVENT_MASK_STRUCTURE_NOTIFY |
                                    XCB_EVENT_MASK_BUTTON_PRESS | XCB_EVENT_MASK_ENTER_WINDOW |
                                    XCB_EVENT_MASK_LEAVE_WINDOW;
    const bool hasAlpha = chosen.depth == alphaDepth;
    // A window takes over what its parent has painted only where both have the same depth.
    const bool followsParent = !hasAlpha && chosen.depth == screen->root_depth;
    const std::uint32_t mask = (followsParent ? XCB_CW_BACK_PIXMAP : XCB_CW_BACK_PIXEL) | XCB_CW_BORDER_PIXEL |
                               XCB_CW_EVENT_MASK | XCB_CW_COLORMAP;
    const std::array<std::uint32_t, 4> values{followsParent ? std::uint32_t{XCB_BACK_PIXMAP_PARENT_RELATIVE} : 0U, 0U,
                                              heard, colormap_};
    xcb_create_window(server, chosen.depth, window_, screen->root, 0, 0, firstSide, firstSide, 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, chosen.id, mask, values.data());
    describe();
    const XcbReply<xcb_render_query_pict_formats_reply_t> formats(
        xcb_render_query_pict_formats_reply(server, xcb_render_query_pict_formats(server), nullptr));
    const auto windowFormat = formats ? formatOf(*formats, chosen.id) : xcb_render_pictformat_t{XCB_NONE};
    if (windowFormat != XCB_NONE) {
        iconFormat_ = alphaFormat(*formats);
        picture_ = xcb_generate_id(server);
        xcb_render_create_picture(server, picture_, window_, windowFormat, 0, nullptr);
    }
}

X11TrayWindow::~X11TrayWindow() {
    auto* const server = connection_.get();
    if (picture_ != XCB_NONE) {
        xcb_render_free_picture(server, picture_);
    }
    if (window_ != XCB_WINDOW_NONE) {
        xcb_destroy_window(server, window_);
    }
    xcb_free_colormap(server, colormap_);
    xcb_flush(server);
}

void X11TrayWindow::describe() {
    const auto atoms = connection_.internAtoms({"_XEMBED_INFO", "_NET_WM_PID"});
    constexpr std::uint32_t version = 0;
    constexpr std::uint32_t wantsToBeMapped = 1;
    const std::array<std::uint32_t, 2> embedding{version, wantsToBeMapped};
    const auto pid = static_cast<std::uint32_t>(getpid());
    constexpr std::string_view windowClass("ferrowyn\0Ferrowyn\0", 18);
    auto* const server = connection_.get();
    xcb_change_property(server, XCB_PROP_MODE_REPLACE, window_, atoms[0], atoms[0], 32, embedding.size(),
                        embedding.data());
    xcb_change_property(server, XCB_PROP_MODE_REPLACE, window_, atoms[1], XCB_ATOM_CARDINAL, 32, 1, &pid);
    xcb_change_property(server, XCB_PROP_MODE_REPLACE, window_, XCB_ATOM_WM_CLASS, XCB_ATOM_STRING, 8,
                        static_cast<std::uint32_t>(windowClass.size()), windowClass.data());
    // Trays take a window that asks for no room for one that is hidden.
    xcb_size_hints_t hints{};
    xcb_icccm_size_hints_set_min_size(&hints, leastSide, leastSide);
    xcb_icccm_set_wm_normal_hints(server, window_, &hints);
}

int X11TrayWindow::side() const {
    return std::max(std::min(width_, height_), 1);
}

void X11TrayWindow::resized(int width, int height) {
    width_ = width;
    height_ = height;
}

void X11TrayWindow::setTitle(const std::string& title) {
    const auto atoms = connection_.internAtoms({"_NET_WM_NAME", "UTF8_STRING"});
    for (const auto name : {atoms[0], xcb_atom_t{XCB_ATOM_WM_NAME}}) {
        xcb_change_property(connection_.get(), XCB_PROP_MODE_REPLACE, window_, name, atoms[1], 8,
                            static_cast<std::uint32_t>(title.size()), title.data());
    }
}

void X11TrayWindow::draw(const QImage& icon) {
    auto* const server = connection_.get();
    xcb_clear_area(server, 0, window_, 0, 0, 0, 0);
    if (picture_ != XCB_NONE && iconFormat_ != XCB_NONE && !icon.isNull()) {
        X11PanelPixmap pixmap(server, connection_.root(), alphaDepth);
        pixmap.upload(icon.convertToFormat(QImage::Format_ARGB32_Premultiplied));
        const auto source = xcb_generate_id(server);
        xcb_render_create_picture(server, source, pixmap.id(), iconFormat_, 0, nullptr);
        xcb_render_composite(server, XCB_RENDER_PICT_OP_OVER, source, XCB_NONE, picture_, 0, 0, 0, 0,
                             static_cast<std::int16_t>((width_ - icon.width()) / 2),
                             static_cast<std::int16_t>((height_ - icon.height()) / 2),
                             static_cast<std::uint16_t>(icon.width()), static_cast<std::uint16_t>(icon.height()));
        xcb_render_free_picture(server, source);
    }
    xcb_flush(server);
}

}  // namespace ferrowyn

#include "platform/x11/x11_tray_icon.h"

#include <unistd.h>
#include <xcb/xcb_icccm.h>

#include <QCursor>
#include <QToolTip>
#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

#include "platform/main_loop.h"
#include "platform/x11/x11_panel_window.h"
#include "platform/x11/xcb_reply.h"

namespace ferrowyn {

namespace {

/// The size until the tray resizes the window.
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

/// The picture format of icons: 8 bits each for alpha, red, green and blue.
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
    constexpr std::uint32_t eventMask = XCB_EVENT_MASK_EXPOSURE | XCB_EVENT_MASK_STRUCTURE_NOTIFY |
                                        XCB_EVENT_MASK_BUTTON_PRESS | XCB_EVENT_MASK_ENTER_WINDOW |
                                        XCB_EVENT_MASK_LEAVE_WINDOW;
    const bool hasAlpha = chosen.depth == alphaDepth;
    // A parent-relative background needs the parent's depth.
    const bool followsParent = !hasAlpha && chosen.depth == screen->root_depth;
    const std::uint32_t mask = (followsParent ? XCB_CW_BACK_PIXMAP : XCB_CW_BACK_PIXEL) | XCB_CW_BORDER_PIXEL |
                               XCB_CW_EVENT_MASK | XCB_CW_COLORMAP;
    const std::array<std::uint32_t, 4> values{followsParent ? std::uint32_t{XCB_BACK_PIXMAP_PARENT_RELATIVE} : 0U, 0U,
                                              eventMask, colormap_};
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
    // Some trays treat a window without a minimum size as hidden.
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

namespace {

constexpr Seconds toolTipDelay{0.7};
/// In a tall panel, an icon of the panel's full height would be larger than the other icons.
constexpr int largestSide = 64;
/// The tray has four colours (text, error, warning, success) of three channels each.
constexpr std::size_t colorChannels = 12;

}  // namespace

X11TrayIcon::X11TrayIcon(X11EventConnection& events, MainLoop& mainLoop, TraySymbolPainter painter)
    : mainLoop_(mainLoop), painter_(std::move(painter)), events_(events) {
    const std::string selection = "_NET_SYSTEM_TRAY_S" + std::to_string(events_.connection().screenNumber());
    const auto atoms = events_.connection().internAtoms(
        {selection, "MANAGER", "_NET_SYSTEM_TRAY_OPCODE", "_NET_SYSTEM_TRAY_VISUAL", "_NET_SYSTEM_TRAY_COLORS"});
    atoms_ = {atoms[0], atoms[1], atoms[2], atoms[3], atoms[4]};
    // The client messages of new trays are sent to those who follow the root's structure, as this connection does.
    eventSubscription_ = events_.observe([this](const xcb_generic_event_t& event) { handle(event); });
    lookForTray();
}

X11TrayIcon::~X11TrayIcon() {
    if (toolTipTimer_) {
        QToolTip::hideText();
    }
}

void X11TrayIcon::setIcon(const std::string& symbol) {
    symbol_ = symbol;
    redraw();
}

void X11TrayIcon::setToolTip(const std::string& title) {
    toolTip_ = title;
    if (window_ != nullptr) {
        window_->setTitle(toolTip_);
        events_.flush();
    }
}

void X11TrayIcon::lookForTray() {
    const auto cookie = xcb_get_selection_owner(events_.get(), atoms_.selection);
    // The replies are collected in any case, because xcb keeps uncollected replies in memory.
    events_.whenAnswered([this, life = life_.watch(), &events = events_, cookie] {
        const XcbReply<xcb_get_selection_owner_reply_t> reply(
            xcb_get_selection_owner_reply(events.get(), cookie, nullptr));
        if (life.isAlive() && reply && reply->owner != XCB_WINDOW_NONE) {
            readTray(reply->owner);
        }
    });
}

void X11TrayIcon::readTray(xcb_window_t tray) {
    if (tray == tray_) {
        return;
    }
    undock();
    tray_ = tray;
    // Selected before the properties are read, so that the end of the tray is not missed.
    events_.watch(tray_);
    const auto visual = xcb_get_property(events_.get(), 0, tray_, atoms_.visual, XCB_ATOM_VISUALID, 0, 1);
    const auto colors = xcb_get_property(events_.get(), 0, tray_, atoms_.colors, XCB_ATOM_CARDINAL, 0, colorChannels);
    events_.whenAnswered([this, life = life_.watch(), &events = events_, tray, visual, colors] {
        const auto offered = X11Property::collect(events.get(), visual);
        const auto named = X11Property::collect(events.get(), colors);
        if (life.isAlive() && tray == tray_) {
            setColors(named);
            dock(offered.item(XCB_ATOM_VISUALID));
        }
    });
}

void X11TrayIcon::dock(std::optional<xcb_visualid_t> visual) {
    constexpr std::uint32_t requestDock = 0;
    window_ = std::make_unique<X11TrayWindow>(events_.connection(), visual);
    window_->setTitle(toolTip_);
    xcb_client_message_event_t request{};
    request.response_type = XCB_CLIENT_MESSAGE;
    request.format = 32;
    request.window = tray_;
    request.type = atoms_.opcode;
    request.data.data32[0] = XCB_CURRENT_TIME;
    request.data.data32[1] = requestDock;
    request.data.data32[2] = window_->id();
    xcb_send_event(events_.get(), 0, tray_, XCB_EVENT_MASK_NO_EVENT, reinterpret_cast<const char*>(&request));
    events_.flush();
}

void X11TrayIcon::undock() {
    window_.reset();
    isMapped_ = false;
    tray_ = XCB_WINDOW_NONE;
    toolTipTimer_.reset();
}

void X11TrayIcon::setColors(const X11Property& colors) {
    const auto channels = colors.items(XCB_ATOM_CARDINAL);
    color_.reset();
    if (channels.size() >= 3) {
        const auto channel = [&](std::size_t index) {
            return static_cast<quint16>(std::min<std::uint32_t>(channels[index], 0xFFFF));
        };
        color_ = QColor::fromRgba64(channel(0), channel(1), channel(2));
    }
}

void X11TrayIcon::handle(const xcb_generic_event_t& event) {
    const auto type = typeOf(event);
    if (type == XCB_CLIENT_MESSAGE) {
        const auto& message = reinterpret_cast<const xcb_client_message_event_t&>(event);
        // A new tray announces itself with this message. Its window is asked from the server, because any client can
        // send the message.
        if (message.type == atoms_.manager && message.data.data32[1] == atoms_.selection) {
            lookForTray();
        }
    } else if (type == XCB_PROPERTY_NOTIFY) {
        const auto& change = reinterpret_cast<const xcb_property_notify_event_t&>(event);
        if (change.window == tray_ && change.atom == atoms_.colors) {
            const auto cookie =
                xcb_get_property(events_.get(), 0, tray_, atoms_.colors, XCB_ATOM_CARDINAL, 0, colorChannels);
            events_.whenAnswered([this, life = life_.watch(), &events = events_, cookie] {
                const auto named = X11Property::collect(events.get(), cookie);
                if (life.isAlive()) {
                    setColors(named);
                    redraw();
                }
            });
        }
    } else if (type == XCB_DESTROY_NOTIFY &&
               reinterpret_cast<const xcb_destroy_notify_event_t&>(event).window == tray_) {
        undock();
        lookForTray();
    } else if (window_ != nullptr) {
        handleWindow(event);
    }
}

void X11TrayIcon::handleWindow(const xcb_generic_event_t& event) {
    switch (typeOf(event)) {
        case XCB_EXPOSE:
            redraw();
            break;
        case XCB_CONFIGURE_NOTIFY: {
            const auto& change = reinterpret_cast<const xcb_configure_notify_event_t&>(event);
            if (change.window == window_->id() &&
                (change.width != window_->width() || change.height != window_->height())) {
                window_->resized(change.width, change.height);
                redraw();
            }
            break;
        }
        case XCB_MAP_NOTIFY:
            if (reinterpret_cast<const xcb_map_notify_event_t&>(event).window == window_->id()) {
                isMapped_ = true;
                redraw();
            }
            break;
        case XCB_UNMAP_NOTIFY:
            isMapped_ = isMapped_ && reinterpret_cast<const xcb_unmap_notify_event_t&>(event).window != window_->id();
            break;
        case XCB_DESTROY_NOTIFY:
            if (reinterpret_cast<const xcb_destroy_notify_event_t&>(event).window == window_->id()) {
                window_->forget();
                undock();
                lookForTray();
            }
            break;
        case XCB_REPARENT_NOTIFY: {
            const auto& change = reinterpret_cast<const xcb_reparent_notify_event_t&>(event);
            // A tray that ends reparents its icons to the root window.
            if (change.window == window_->id() && change.parent == events_.root()) {
                undock();
                lookForTray();
            }
            break;
        }
        case XCB_BUTTON_PRESS:
            pressed(reinterpret_cast<const xcb_button_press_event_t&>(event));
            break;
        case XCB_ENTER_NOTIFY:
            toolTipTimer_ = mainLoop_.after(toolTipDelay, [this] { showToolTip(); });
            break;
        case XCB_LEAVE_NOTIFY:
            toolTipTimer_.reset();
            QToolTip::hideText();
            break;
        default:
            break;
    }
}

void X11TrayIcon::pressed(const xcb_button_press_event_t& press) {
    constexpr xcb_button_t lastButton = 3;  // the wheel's buttons follow
    if (press.detail > lastButton) {
        return;
    }
    toolTipTimer_.reset();
    QToolTip::hideText();
    const Rect anchor{static_cast<double>(press.root_x - press.event_x),
                      static_cast<double>(press.root_y - press.event_y), static_cast<double>(window_->width()),
                      static_cast<double>(window_->height())};
    // The press started an automatic pointer grab by this connection. Qt's menu grabs the pointer on another one, so
    // this grab has to end first.
    xcb_ungrab_pointer(events_.get(), XCB_CURRENT_TIME);
    events_.whenAnswered(life_.guard([this, anchor] {
        if (onPress_) {
            onPress_(anchor);
        }
    }));
}

void X11TrayIcon::redraw() {
    if (window_ == nullptr || symbol_.empty()) {
        return;
    }
    window_->draw(painter_(symbol_, std::min(window_->side(), largestSide), color_));
}

void X11TrayIcon::showToolTip() const {
    if (!toolTip_.empty()) {
        QToolTip::showText(QCursor::pos(), QString::fromStdString(toolTip_).toHtmlEscaped());
    }
}

}  // namespace ferrowyn

#include "tests/x11/adapter/tray_fixture.h"

#include <algorithm>
#include <stdexcept>

#include "platform/x11/x11_connection.h"
#include "platform/x11/x11_tray_icon.h"
#include "platform/x11/xcb_reply.h"

namespace ferrowyn::x11test {
namespace {

QImage plainIcon(const std::string& /*symbol*/, int side, const std::optional<QColor>& /*color*/) {
    QImage image(side, side, QImage::Format_ARGB32_Premultiplied);
    image.fill(QColor::fromRgb(iconColor));
    return image;
}

}  // namespace

TrayRig::TrayRig(const Options& options)
    : ToolkitSession("openbox", {.screens = {options.screen}, .monitors = {}}, options.scale) {
    QApplication::setQuitOnLastWindowClosed(false);
    events = std::make_unique<X11EventConnection>(X11Connection::open(server.display().c_str()));
    mainLoop = std::make_unique<QtMainLoop>();
    backgroundWork = std::make_unique<QtBackgroundWork>();
    const TraySymbolPainter painter = options.draws ? options.draws : plainIcon;
    const auto makeEmbedded = [this, painter] { return std::make_unique<X11TrayIcon>(*events, *mainLoop, painter); };
    icon = std::make_unique<LinuxTrayIcon>(*mainLoop, *backgroundWork,
                                           options.hasBus ? std::optional(bus.address()) : std::nullopt, painter,
                                           options.hasFallback ? LinuxTrayIcon::MakeFallback(makeEmbedded) : nullptr);
    item = std::make_unique<PopupStatusItem>(*icon, linuxTexts());
    item->setButton({"macwindow.on.rectangle", "Ferrowyn", "Ferrowyn"});
    item->setMenu(test::statusMenu(test::Health::ready));
    item->setActionHandler([this](const MenuRow& row) { chosen.push_back(row.action); });
}

bool TrayRig::waitForHost(LinuxTrayIcon::Host host) {
    return runUntil([&] { return icon->shownBy() == host; });
}

std::optional<TestDesktop::Place> TrayRig::iconPlace() const {
    const int width = desktop.screen()->width_in_pixels;
    const int height = desktop.screen()->height_in_pixels;
    // Trays are at the upper and the lower edge.
    constexpr int strip = 40;
    for (const int top : {0, height - strip}) {
        const auto pixels = desktop.pixels({0, top, width, strip});
        int left = width, right = -1, upper = strip, lower = -1;
        for (int index = 0; index < static_cast<int>(pixels.size()); ++index) {
            if ((pixels[static_cast<std::size_t>(index)] & 0xFFFFFFU) == iconColor) {
                left = std::min(left, index % width);
                right = std::max(right, index % width);
                upper = std::min(upper, index / width);
                lower = std::max(lower, index / width);
            }
        }
        if (right >= 0) {
            return TestDesktop::Place{left, top + upper, right - left + 1, lower - upper + 1};
        }
    }
    return std::nullopt;
}

std::optional<TestDesktop::Place> TrayRig::waitForIcon() {
    std::optional<TestDesktop::Place> place;
    int timesSeen = 0;
    const bool isStill = runUntil([&] {
        const auto now = iconPlace();
        timesSeen = now && now == place ? timesSeen + 1 : 0;
        place = now;
        return timesSeen == 5;
    });
    return isStill ? place : std::nullopt;
}

std::optional<TestDesktop::Place> TrayRig::openMenu(std::uint8_t button) {
    const auto place = waitForIcon();
    if (!place) {
        return std::nullopt;
    }
    input.click(place->x + place->width / 2, place->y + place->height / 2, button);
    std::optional<TestDesktop::Place> menu;
    static_cast<void>(runUntil([&] {
        const auto window = desktop.visiblePanel();
        menu = window ? desktop.placeOf(*window) : std::nullopt;
        // It holds the keyboard once it can be used.
        return menu && !desktop.keyboardIsFree();
    }));
    return menu;
}

bool TrayRig::waitUntilMenuIsGone() {
    return runUntil(
        [&] { return item->openPopup() == nullptr && !desktop.visiblePanel() && desktop.keyboardIsFree(); });
}

namespace {

xcb_visualid_t alphaVisual(const xcb_screen_t* screen) {
    for (auto depth = xcb_screen_allowed_depths_iterator(screen); depth.rem > 0; xcb_depth_next(&depth)) {
        if (depth.data->depth == 32 && depth.data->visuals_len > 0) {
            return xcb_depth_visuals_iterator(depth.data).data->visual_id;
        }
    }
    throw std::runtime_error("the X server has no visual with alpha");
}

}  // namespace

ScriptedTray::ScriptedTray(const std::string& display, const Options& options)
    : connection_(xcb_connect(display.c_str(), nullptr)),
      screen_(xcb_setup_roots_iterator(xcb_get_setup(connection_)).data) {
    window_ = xcb_generate_id(connection_);
    constexpr std::uint32_t ground = 0x336699;
    const std::array<std::uint32_t, 3> values{ground, 1, XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY};
    xcb_create_window(connection_, screen_->root_depth, window_, screen_->root, 0, 0, 200, 32, 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, screen_->root_visual,
                      XCB_CW_BACK_PIXEL | XCB_CW_OVERRIDE_REDIRECT | XCB_CW_EVENT_MASK, values.data());
    xcb_map_window(connection_, window_);
    if (options.offersAlpha) {
        const auto visual = alphaVisual(screen_);
        xcb_change_property(connection_, XCB_PROP_MODE_REPLACE, window_, atom("_NET_SYSTEM_TRAY_VISUAL"),
                            XCB_ATOM_VISUALID, 32, 1, &visual);
    }
    if (options.textColor) {
        setTextColor(*options.textColor);
    }
    const auto selection = atom("_NET_SYSTEM_TRAY_S0");
    xcb_set_selection_owner(connection_, window_, selection, XCB_CURRENT_TIME);
    xcb_client_message_event_t message{};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = screen_->root;
    message.type = atom("MANAGER");
    message.data.data32[1] = selection;
    message.data.data32[2] = window_;
    xcb_send_event(connection_, 0, screen_->root, XCB_EVENT_MASK_STRUCTURE_NOTIFY,
                   reinterpret_cast<const char*>(&message));
    xcb_flush(connection_);
}

ScriptedTray::~ScriptedTray() {
    xcb_disconnect(connection_);
}

xcb_atom_t ScriptedTray::atom(const std::string& name) const {
    const auto cookie = xcb_intern_atom(connection_, 0, static_cast<std::uint16_t>(name.size()), name.c_str());
    const XcbReply<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(connection_, cookie, nullptr));
    return reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
}

std::optional<xcb_window_t> ScriptedTray::dockedWindow() {
    const auto opcode = atom("_NET_SYSTEM_TRAY_OPCODE");
    while (const XcbReply<xcb_generic_event_t> event{xcb_poll_for_event(connection_)}) {
        const auto& message = reinterpret_cast<const xcb_client_message_event_t&>(*event);
        constexpr std::uint32_t requestDock = 0;
        if ((event->response_type & 0x7FU) == XCB_CLIENT_MESSAGE && message.type == opcode &&
            message.data.data32[1] == requestDock) {
            docked_ = message.data.data32[2];
            constexpr std::array<std::uint32_t, 2> side{28, 28};
            // Gone with the tray, whatever happens, and otherwise saved.
            xcb_change_save_set(connection_, XCB_SET_MODE_INSERT, *docked_);
            xcb_reparent_window(connection_, *docked_, window_, 20, 2);
            xcb_configure_window(connection_, *docked_, XCB_CONFIG_WINDOW_WIDTH | XCB_CONFIG_WINDOW_HEIGHT,
                                 side.data());
            xcb_map_window(connection_, *docked_);
            xcb_flush(connection_);
        }
    }
    return docked_;
}

void ScriptedTray::setTextColor(const std::array<std::uint32_t, 3>& color) {
    std::array<std::uint32_t, 12> colors{};
    std::copy(color.begin(), color.end(), colors.begin());
    xcb_change_property(connection_, XCB_PROP_MODE_REPLACE, window_, atom("_NET_SYSTEM_TRAY_COLORS"), XCB_ATOM_CARDINAL,
                        32, colors.size(), colors.data());
    xcb_flush(connection_);
}

void ScriptedTray::letGo() {
    xcb_reparent_window(connection_, docked_.value(), screen_->root, 0, 0);
    docked_.reset();
    xcb_flush(connection_);
}

std::uint8_t ScriptedTray::depthOf(xcb_window_t window) const {
    const XcbReply<xcb_get_geometry_reply_t> geometry(
        xcb_get_geometry_reply(connection_, xcb_get_geometry(connection_, window), nullptr));
    return geometry ? geometry->depth : std::uint8_t{0};
}

}  // namespace ferrowyn::x11test

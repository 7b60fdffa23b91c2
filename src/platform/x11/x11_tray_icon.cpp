#include "platform/x11/x11_tray_icon.h"

#include <QCursor>
#include <QToolTip>
#include <algorithm>
#include <utility>

#include "platform/main_loop.h"
#include "platform/x11/x11_property.h"

namespace ferrowyn {
namespace {

constexpr Seconds toolTipDelay{0.7};
/// A drawing that fills a tall panel would outgrow its neighbours.
constexpr int largestSide = 64;
/// Of the tray's colours, three channels each: for text, for an error, a warning and a success.
constexpr std::size_t colorChannels = 12;

void listen(xcb_connection_t* connection, xcb_window_t window, std::uint32_t mask) {
    xcb_change_window_attributes(connection, window, XCB_CW_EVENT_MASK, &mask);
}

}  // namespace

X11TrayIcon::X11TrayIcon(std::unique_ptr<X11Connection> connection, MainLoop& mainLoop, TraySymbolPainter painter)
    : mainLoop_(mainLoop),
      painter_(std::move(painter)),
      events_(
          std::move(connection), [this](const xcb_generic_event_t& event) { handle(event); },
          [this] { isMapped_ = false; }) {
    const std::string selection = "_NET_SYSTEM_TRAY_S" + std::to_string(events_.connection().screenNumber());
    const auto atoms = events_.connection().internAtoms(
        {selection, "MANAGER", "_NET_SYSTEM_TRAY_OPCODE", "_NET_SYSTEM_TRAY_VISUAL", "_NET_SYSTEM_TRAY_COLORS"});
    atoms_ = {atoms[0], atoms[1], atoms[2], atoms[3], atoms[4]};
    listen(events_.get(), events_.root(), XCB_EVENT_MASK_STRUCTURE_NOTIFY);
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
    events_.whenAnswered([this, cookie, alive = std::weak_ptr<bool>(alive_)] {
        if (alive.expired()) {
            return;
        }
        const XcbReply<xcb_get_selection_owner_reply_t> reply(
            xcb_get_selection_owner_reply(events_.get(), cookie, nullptr));
        if (reply && reply->owner != XCB_WINDOW_NONE) {
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
    // Before the properties are read, so that a tray that goes meanwhile is noticed.
    listen(events_.get(), tray_, XCB_EVENT_MASK_STRUCTURE_NOTIFY | XCB_EVENT_MASK_PROPERTY_CHANGE);
    const auto visual = xcb_get_property(events_.get(), 0, tray_, atoms_.visual, XCB_ATOM_VISUALID, 0, 1);
    const auto colors = xcb_get_property(events_.get(), 0, tray_, atoms_.colors, XCB_ATOM_CARDINAL, 0, colorChannels);
    events_.whenAnswered([this, tray, visual, colors, alive = std::weak_ptr<bool>(alive_)] {
        if (alive.expired()) {
            return;
        }
        const auto offered = X11Property::collect(events_.get(), visual);
        const auto named = X11Property::collect(events_.get(), colors);
        if (tray == tray_) {
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
    const auto type = event.response_type & 0x7FU;
    if (type == XCB_CLIENT_MESSAGE) {
        const auto& message = reinterpret_cast<const xcb_client_message_event_t&>(event);
        // Every new tray says so to everybody. Which window it has, the server knows better than a message.
        if (message.type == atoms_.manager && message.data.data32[1] == atoms_.selection) {
            lookForTray();
        }
    } else if (type == XCB_PROPERTY_NOTIFY) {
        const auto& change = reinterpret_cast<const xcb_property_notify_event_t&>(event);
        if (change.window == tray_ && change.atom == atoms_.colors) {
            const auto cookie =
                xcb_get_property(events_.get(), 0, tray_, atoms_.colors, XCB_ATOM_CARDINAL, 0, colorChannels);
            events_.whenAnswered([this, cookie, alive = std::weak_ptr<bool>(alive_)] {
                if (!alive.expired()) {
                    setColors(X11Property::collect(events_.get(), cookie));
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
    switch (event.response_type & 0x7FU) {
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
            isMapped_ = isMapped_ || reinterpret_cast<const xcb_map_notify_event_t&>(event).window == window_->id();
            redraw();
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
            // A tray that ends gives its icons back to the root, where nobody wants them.
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
    constexpr xcb_button_t lastButton = 3;  // what follows is the wheel
    if (press.detail > lastButton) {
        return;
    }
    toolTipTimer_.reset();
    QToolTip::hideText();
    const Rect anchor{static_cast<double>(press.root_x - press.event_x),
                      static_cast<double>(press.root_y - press.event_y), static_cast<double>(window_->width()),
                      static_cast<double>(window_->height())};
    // The pointer belongs to this connection until the button is released; the menu, which is the toolkit's, wants it.
    xcb_ungrab_pointer(events_.get(), XCB_CURRENT_TIME);
    events_.whenAnswered([this, anchor, alive = std::weak_ptr<bool>(alive_)] {
        if (!alive.expired() && onPress_) {
            onPress_(anchor);
        }
    });
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

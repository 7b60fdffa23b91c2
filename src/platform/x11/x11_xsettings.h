#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "core/posted_work.h"
#include "platform/x11/x11_event_connection.h"

namespace ferrowyn {

/// The GTK theme's name as the XSETTINGS manager of the desktop tells it, now and whenever it changes. Main thread; it
/// never waits for the server.
class X11Xsettings {
public:
    using Told = std::function<void(std::optional<std::string> theme)>;

    /// `onTheme` hears the name when it is known, and after each change; nothing when no manager runs or it names none.
    /// `events` outlives this.
    X11Xsettings(X11PanelEvents& events, Told onTheme);
    X11Xsettings(const X11Xsettings&) = delete;
    X11Xsettings& operator=(const X11Xsettings&) = delete;

private:
    void handle(const xcb_generic_event_t& event);
    /// Finds who the manager is, and then reads from it.
    void findManager();
    void readSettings();

    X11PanelEvents& events_;
    Told onTheme_;
    xcb_atom_t selection_ = XCB_ATOM_NONE;
    xcb_atom_t settings_ = XCB_ATOM_NONE;
    xcb_window_t manager_ = XCB_WINDOW_NONE;
    std::uint8_t fixesFirstEvent_ = 0;
    /// Held weakly by what waits for answers.
    LifeToken life_;
    Subscription eventSubscription_;
};

/// The text setting of this name in the value of a manager's property, which any client may have written: nothing when
/// it is not there or the value is damaged.
[[nodiscard]] std::optional<std::string> xsettingsText(std::span<const std::uint8_t> property, std::string_view name);

}  // namespace ferrowyn

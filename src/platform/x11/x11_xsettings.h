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

/// Reads the GTK theme's name from the desktop's XSETTINGS manager and follows its changes. Main thread; never waits
/// for the server, except for its atoms at construction.
class X11Xsettings {
public:
    using ThemeHandler = std::function<void(std::optional<std::string> theme)>;

    /// `onTheme` is called with the name when it is known, and after each change of the settings; with nullopt when no
    /// manager runs or it names no theme. `events` outlives this.
    X11Xsettings(X11EventConnection& events, ThemeHandler onTheme);
    X11Xsettings(const X11Xsettings&) = delete;
    X11Xsettings& operator=(const X11Xsettings&) = delete;

private:
    void handle(const xcb_generic_event_t& event);
    /// Asks for the owner of the manager selection and then reads its settings.
    void findManager();
    void readSettings();

    X11EventConnection& events_;
    ThemeHandler onTheme_;
    xcb_atom_t selection_ = XCB_ATOM_NONE;
    xcb_atom_t settings_ = XCB_ATOM_NONE;
    xcb_window_t manager_ = XCB_WINDOW_NONE;
    std::uint8_t fixesFirstEvent_ = 0;
    /// Replies may arrive after this object is destroyed.
    LifeToken life_;
    Subscription eventSubscription_;
};

/// The text setting with this name in the value of a manager's property. nullopt when it is missing or the value is
/// damaged, which must be expected because any client can write the property.
[[nodiscard]] std::optional<std::string> xsettingsText(std::span<const std::uint8_t> property, std::string_view name);

}  // namespace ferrowyn

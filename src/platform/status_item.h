#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "core/geometry.h"
#include "core/published.h"

namespace ferrowyn {

/// What the button in the status bar or tray shows.
struct StatusButton {
    /// Name of a symbol, drawn as a template: the bar tints it.
    std::string symbol;
    std::string tooltip;
    std::string accessibilityLabel;
    friend bool operator==(const StatusButton&, const StatusButton&) = default;
};

/// The colours that a menu may give a text or symbol. `label` is the default.
enum class MenuTint { label, secondaryLabel, tertiaryLabel, orange, accent };

/// The menu's first row: the program's icon, name and state, and a gear that opens the settings.
struct MenuHeader {
    std::string title;
    std::string subtitle;
    MenuTint subtitleTint = MenuTint::secondaryLabel;
    friend bool operator==(const MenuHeader&, const MenuHeader&) = default;
};

/// The header's parts, in points, the same on every desktop; it is at least this wide. The text stands between the icon
/// and the gear.
namespace menu_header {
inline constexpr double width = 268;
inline constexpr double height = 58;
inline constexpr double iconSide = 32;
inline constexpr double iconLeft = 14;
inline constexpr double gearSide = 26;
inline constexpr double gearRightInset = 14;
inline constexpr double gearPointSize = 14;
inline constexpr double textLeft = 54;
inline constexpr double textToGear = 8;
/// The texts' tops are measured from the header's upper edge.
inline constexpr double titleTop = 15;
inline constexpr double titleHeight = 17;
inline constexpr double subtitleTop = 33;
inline constexpr double subtitleHeight = 15;
/// The gear's highlight while the pointer is over it.
inline constexpr double hoverInset = 1;
inline constexpr double hoverRadius = 5;
}  // namespace menu_header

/// One row of the menu. A plain value; the toolkit only draws it.
struct MenuRow {
    enum class Kind { header, separator, sectionTitle, item };
    /// What choosing the row does; the controller carries it out.
    enum class Action {
        none,
        retryInput,
        showSwitcher,
        selectLayout,
        toggleLaunchAtLogin,
        openSettings,
        openOnboarding,
        openAbout,
        downloadUpdate,
        quit,
    };

    Kind kind = Kind::item;
    /// For a header only.
    MenuHeader header;
    std::string title;
    /// Drawn after the title in the tertiary colour, such as the keys that open the switcher. Empty for most rows.
    std::string titleSuffix;
    /// Name of a symbol; empty for none.
    std::string symbol;
    MenuTint symbolTint = MenuTint::label;
    /// The character that, with the menu's modifier, chooses the row while the menu is open; empty for none.
    std::string keyEquivalent;
    std::string tooltip;
    /// The value that the row selects, such as the stored form of a layout. Empty for most rows.
    std::string representedValue;
    bool isEnabled = true;
    bool isChecked = false;
    Action action = Action::none;
    friend bool operator==(const MenuRow&, const MenuRow&) = default;
};

using StatusMenu = std::vector<MenuRow>;

/// The program's one permanent place on the screen: an item in the menu bar or tray with a menu. Main thread.
class StatusItem {
public:
    virtual ~StatusItem() = default;

    virtual void setButton(const StatusButton& button) = 0;
    /// Replaces the menu. A menu that is open now may keep the old rows or show the new ones.
    virtual void setMenu(const StatusMenu& menu) = 0;
    /// Called with the row that the user chose, after the menu has closed; for the header it is `openSettings`.
    virtual void setActionHandler(std::function<void(const MenuRow&)> handler) = 0;
};

/// An icon in the desktop's tray, for desktops where the program shows the menu itself. It appears as soon as a tray
/// accepts it, and again when another tray replaces the first. Main thread.
class TrayIcon {
public:
    virtual ~TrayIcon() = default;

    /// `symbol` is one of the program's own drawings, shown in the colour that suits the tray.
    virtual void setIcon(const std::string& symbol) = 0;
    virtual void setToolTip(const std::string& title) = 0;
    /// Called when the user presses the icon with either button or chooses it with the keyboard. `anchor` is the icon's
    /// rectangle in pixels of the root window, or an empty rectangle at a point when the tray does not report the size.
    virtual void setPressHandler(std::function<void(const Rect& anchor)> handler) = 0;
    /// Whether a tray shows the icon now.
    [[nodiscard]] virtual bool isShown() const = 0;
};

}  // namespace ferrowyn

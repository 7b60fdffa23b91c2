#pragma once

#include <functional>
#include <string>

#include "core/geometry.h"

namespace ferrowyn {

/// An icon in the desktop's tray, for desktops where the menu is the program's own popup. Main thread. It appears as
/// soon as a tray takes it, and again in every tray that replaces the first.
class TrayIcon {
public:
    virtual ~TrayIcon() = default;

    /// `symbol` is one of the program's own drawings, shown in the colour that suits the tray.
    virtual void setIcon(const std::string& symbol) = 0;
    virtual void setToolTip(const std::string& title) = 0;
    /// Called when the user presses the icon with either button or chooses it with the keyboard. `anchor` is the icon's
    /// rectangle in pixels of the root window, or a point (an empty rectangle) where the tray tells no more.
    virtual void setPressHandler(std::function<void(const Rect& anchor)> handler) = 0;
    /// Whether some tray shows the icon now.
    [[nodiscard]] virtual bool isShown() const = 0;
};

}  // namespace ferrowyn

#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "core/desktop_appearance.h"
#include "core/published.h"
#include "platform/log.h"
#include "platform/platform.h"
#include "platform/qt/tray_symbol_painter.h"
#include "platform/workspace.h"

namespace ferrowyn {

class LinuxTrayIcon;

struct X11PlatformOptions {
    /// In the format of DISPLAY; empty for the environment's display.
    std::string display;
    /// Messages below this level are dropped.
    LogLevel minimumLogLevel = LogLevel::standard;
    /// Messages go to standard error even when that is no terminal.
    bool mirrorsLog = false;
    /// Called once when the connection to the X server is lost. Without a handler the program ends with status 1.
    std::function<void()> onConnectionLost;
};

/// Makes and owns all parts of the X11 adapter. Main thread; made after the QApplication and destroyed before it.
class X11Platform {
public:
    /// Null when there is no connection to the X server. Without a window manager or the input extension the platform
    /// is made all the same; `Trust` reports that they are missing.
    [[nodiscard]] static std::unique_ptr<X11Platform> create(const X11PlatformOptions& options);
    ~X11Platform();
    X11Platform(const X11Platform&) = delete;
    X11Platform& operator=(const X11Platform&) = delete;

    [[nodiscard]] const Platform& platform() const;

    /// Shows the program's own page in the place of one of the system's settings when the logic opens one that the
    /// desktop has nothing for; false from the handler counts as not opened.
    void setSettingsPageHandler(std::function<bool(SettingsPage)> handler);

    /// Makes the program's tray icon, which looks for a tray now and later. Destroy it before this.
    [[nodiscard]] std::unique_ptr<LinuxTrayIcon> makeTrayIcon(const TraySymbolPainter& painter);
    [[nodiscard]] const Published<AppearanceSources>& appearance() const;
    /// Whether a compositor runs, which translucent windows need.
    [[nodiscard]] bool isComposited() const;

private:
    struct Parts;
    explicit X11Platform(std::unique_ptr<Parts> parts);

    std::unique_ptr<Parts> parts_;
};

}  // namespace ferrowyn

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
    /// As in DISPLAY; empty for the environment's.
    std::string display;
    /// Messages below it are dropped.
    LogLevel minimumLogLevel = LogLevel::standard;
    /// Messages go to standard error even when that is no terminal.
    bool mirrorsLog = false;
    /// Told once when the X server is gone. By default the program ends with status 1, since there is nothing left that
    /// it could do.
    std::function<void()> onConnectionLost;
};

/// Everything that the program asks of an X11 desktop. Main thread, made after the QApplication and destroyed before
/// it.
class X11Platform {
public:
    /// Null when the X server cannot be connected to. A missing window manager or input extension is no such case: they
    /// are a lack of trust, and a manager may still come.
    [[nodiscard]] static std::unique_ptr<X11Platform> create(const X11PlatformOptions& options);
    ~X11Platform();
    X11Platform(const X11Platform&) = delete;
    X11Platform& operator=(const X11Platform&) = delete;

    [[nodiscard]] const Platform& platform() const;

    /// Shows the program's own page in the place of one of the system's settings when the logic opens one that the
    /// desktop has nothing for; false from the handler counts as not opened.
    void setSettingsPageHandler(std::function<bool(SettingsPage)> handler);

    /// The program's icon in whatever tray this desktop has, now or later. It does not outlive this.
    [[nodiscard]] std::unique_ptr<LinuxTrayIcon> makeTrayIcon(const TraySymbolPainter& painter);
    /// What the desktop says about its appearance.
    [[nodiscard]] const Published<AppearanceSources>& appearance() const;
    /// Whether windows may be translucent now.
    [[nodiscard]] bool isComposited() const;

private:
    struct Parts;
    explicit X11Platform(std::unique_ptr<Parts> parts);

    std::unique_ptr<Parts> parts_;
};

}  // namespace ferrowyn

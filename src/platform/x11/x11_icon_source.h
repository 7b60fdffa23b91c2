#pragma once

#include <cstdint>
#include <functional>
#include <span>
#include <vector>

#include "platform/icon_source.h"
#include "platform/x11/x11_desktop_monitor.h"

namespace ferrowyn {

class DesktopEntries;

/// The icon that the desktop file names in the user's theme; the one that the application's windows carry; a lettered
/// tile. Main thread, with a QGuiApplication.
class X11IconSource final : public IconSource {
public:
    /// All references outlive this.
    X11IconSource(X11DesktopMonitor& monitor, const X11Atoms& atoms, const DesktopEntries& entries)
        : monitor_(monitor), atoms_(atoms), entries_(entries) {}

    [[nodiscard]] std::shared_ptr<const IconImage> iconForFile(std::string_view path) override;
    [[nodiscard]] std::shared_ptr<const IconImage> iconForProcess(Pid pid) override;
    [[nodiscard]] std::shared_ptr<const IconImage> genericApplicationIcon(std::string_view name) override;
    [[nodiscard]] Subscription observeProcessIcons(std::function<void(Pid)> handler) override;

private:
    X11DesktopMonitor& monitor_;
    const X11Atoms& atoms_;
    const DesktopEntries& entries_;
};

/// The pictures in an icon property: width, height and pixels of one after the other. Ends at the first one that is
/// cut or has an impossible size; what came before counts.
[[nodiscard]] std::vector<PixelBuffer> iconsFromProperty(std::span<const std::uint32_t> items);

}  // namespace ferrowyn

#pragma once

#include <cstdint>
#include <functional>
#include <span>
#include <vector>

#include "platform/icon_source.h"
#include "platform/x11/x11_desktop_monitor.h"

namespace ferrowyn {

class DesktopEntries;

/// Loads icons of applications: by desktop file from the user's icon theme, by process from `_NET_WM_ICON` of its
/// windows, or as a tile with a letter. Needs a QGuiApplication. Main thread.
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

/// The images in an icon property, each stored as width, height and pixels. Reading stops at the first image that is
/// cut or has an impossible size; the images before it are returned.
[[nodiscard]] std::vector<PixelBuffer> iconsFromProperty(std::span<const std::uint32_t> items);

}  // namespace ferrowyn

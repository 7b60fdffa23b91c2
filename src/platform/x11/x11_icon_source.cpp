#include "platform/x11/x11_icon_source.h"

#include <utility>

#include "platform/linux/desktop_entries.h"
#include "platform/linux/theme_icons.h"
#include "platform/qt/qt_icons.h"
#include "platform/x11/x11_connection.h"

namespace ferrowyn {
namespace {

/// In 32-bit units: 4 MiB, enough for all usual sizes up to 512 together.
constexpr std::uint32_t maximumPropertyLength = 1U << 20U;
constexpr std::uint32_t maximumSide = 1024;

}  // namespace

std::shared_ptr<const IconImage> X11IconSource::iconForFile(std::string_view path) {
    const auto entry = entries_.byPath(path);
    return entry == nullptr || entry->icon.empty() ? nullptr : themeIcon(entry->icon);
}

std::shared_ptr<const IconImage> X11IconSource::iconForProcess(Pid pid) {
    auto* const connection = monitor_.connection().get();
    const auto windows = monitor_.model().windowsOf(pid);
    for (const auto window : windows) {
        const auto cookie =
            xcb_get_property(connection, 0, window, atoms_.netWmIcon, XCB_ATOM_CARDINAL, 0, maximumPropertyLength);
        const auto property = X11Property::collect(connection, cookie);
        if (auto icon = PixelIconImage::fromStraightAlpha(iconsFromProperty(property.items(XCB_ATOM_CARDINAL)))) {
            return icon;
        }
    }
    return nullptr;
}

std::shared_ptr<const IconImage> X11IconSource::genericApplicationIcon(std::string_view name) {
    return std::make_shared<LetteredTile>(name);
}

Subscription X11IconSource::observeProcessIcons(std::function<void(Pid)> handler) {
    return monitor_.iconChanges().subscribe([this, handler = std::move(handler)](const xcb_window_t& window) {
        if (const auto* const facts = monitor_.model().find(window)) {
            handler(facts->pid);
        }
    });
}

std::vector<PixelBuffer> iconsFromProperty(std::span<const std::uint32_t> items) {
    std::vector<PixelBuffer> icons;
    while (items.size() >= 2) {
        const auto width = items[0];
        const auto height = items[1];
        items = items.subspan(2);
        const bool isPossible = width >= 1 && width <= maximumSide && height >= 1 && height <= maximumSide;
        if (!isPossible || items.size() < std::size_t{width} * height) {
            break;
        }
        const auto pixels = items.first(std::size_t{width} * height);
        icons.push_back({static_cast<int>(width), static_cast<int>(height), {pixels.begin(), pixels.end()}});
        items = items.subspan(pixels.size());
    }
    return icons;
}

}  // namespace ferrowyn

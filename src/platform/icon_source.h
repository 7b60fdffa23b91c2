#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string_view>
#include <vector>

#include "core/app_window.h"
#include "core/desktop_appearance.h"
#include "core/published.h"

namespace ferrowyn {

/// An image in device pixels: premultiplied ARGB, each pixel 0xAARRGGBB, row by row from the top.
struct PixelBuffer {
    int width = 0;
    int height = 0;
    std::vector<std::uint32_t> pixels;
};

/// An icon that can be drawn at any size. Immutable. Main thread.
class IconImage {
public:
    virtual ~IconImage() = default;

    /// The icon as a square of `side` × `side` device pixels (1 to 1024).
    [[nodiscard]] virtual PixelBuffer render(int side) const = 0;
};

/// Loads application icons. Main thread. Loading may be slow the first time: callers cache.
class IconSource {
public:
    virtual ~IconSource() = default;

    /// The icon of the application installed at this path; null when it has none.
    [[nodiscard]] virtual std::shared_ptr<const IconImage> iconForFile(std::string_view path) = 0;
    /// The icon that the running process sets for its windows; null when it sets none or has exited.
    [[nodiscard]] virtual std::shared_ptr<const IconImage> iconForProcess(Pid pid) = 0;
    /// The icon for an application without one. Never null. A desktop without such an icon draws a tile with the first
    /// letter of `name`.
    [[nodiscard]] virtual std::shared_ptr<const IconImage> genericApplicationIcon(std::string_view name) = 0;

    /// Calls the handler with the process that changed its icon or set its first one.
    [[nodiscard]] virtual Subscription observeProcessIcons(std::function<void(Pid)> handler) = 0;
};

enum class SymbolWeight { light, regular, medium, semibold };

/// The desktop's symbols and standard colours, for a program that should look like the rest of it. A desktop without
/// them has no such object. Main thread.
class SystemLooks {
public:
    enum class Color { orange, blue, purple, yellow };

    virtual ~SystemLooks() = default;

    /// The colour in a light or dark scheme; absent when it has no value in red, green and blue.
    [[nodiscard]] virtual std::optional<RgbColor> color(Color color, ColorScheme scheme) const = 0;
    /// The symbol in the size that suits text of `pointSize`, with `scale` device pixels to a point. Its proportions
    /// are kept. Only the opacity of its pixels counts. Absent when the desktop has no symbol with this name.
    [[nodiscard]] virtual std::optional<PixelBuffer> symbol(std::string_view name, double pointSize,
                                                            SymbolWeight weight, double scale) const = 0;
};

}  // namespace ferrowyn

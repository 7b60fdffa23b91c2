#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string_view>
#include <vector>

#include "core/app_window.h"
#include "core/published.h"

namespace ferrowyn {

/// Device pixels, premultiplied ARGB, each 0xAARRGGBB, row by row from the top.
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
    /// The icon that the running process gives itself; null when it gives none or has exited.
    [[nodiscard]] virtual std::shared_ptr<const IconImage> iconForProcess(Pid pid) = 0;
    /// The last resort: never null. `name` may be drawn into it (a lettered tile) where the desktop has no such icon.
    [[nodiscard]] virtual std::shared_ptr<const IconImage> genericApplicationIcon(std::string_view name) = 0;

    /// Tells that the running process gives itself another icon from now on, or its first one.
    [[nodiscard]] virtual Subscription observeProcessIcons(std::function<void(Pid)> handler) = 0;
};

}  // namespace ferrowyn

#pragma once

#include <optional>
#include <string_view>

#include "core/desktop_appearance.h"
#include "platform/icon_source.h"

namespace ferrowyn {

enum class SymbolWeight { light, regular, medium, semibold };

/// The symbols and colours that a desktop has itself, for a program that should look like the rest of it. A desktop
/// without them has no such object. Main thread.
class SystemLooks {
public:
    enum class Color { orange, blue, purple, yellow };

    virtual ~SystemLooks() = default;

    /// As the desktop shows it in light or dark surroundings; absent when it cannot be said in red, green and blue.
    [[nodiscard]] virtual std::optional<RgbColor> color(Color color, ColorScheme scheme) const = 0;
    /// The symbol beside text of this size, in its own proportions, with `scale` device pixels to a point. Only the
    /// opacity of its pixels counts. Absent when the desktop has none of this name.
    [[nodiscard]] virtual std::optional<PixelBuffer> symbol(std::string_view name, double pointSize,
                                                            SymbolWeight weight, double scale) const = 0;
};

}  // namespace ferrowyn

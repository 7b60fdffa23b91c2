#pragma once

#include "platform/icon_source.h"

namespace ferrowyn {

/// The system's symbols by name, and its standard colours. Main thread.
class MacSystemLooks final : public SystemLooks {
public:
    [[nodiscard]] std::optional<RgbColor> color(Color color, ColorScheme scheme) const override;
    [[nodiscard]] std::optional<PixelBuffer> symbol(std::string_view name, double pointSize, SymbolWeight weight,
                                                    double scale) const override;
};

}  // namespace ferrowyn

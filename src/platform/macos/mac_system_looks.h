#pragma once

#include "platform/icon_source.h"

namespace ferrowyn {

/// The icons that the workspace and running applications give. Main thread.
class MacIconSource final : public IconSource {
public:
    [[nodiscard]] std::shared_ptr<const IconImage> iconForFile(std::string_view path) override;
    [[nodiscard]] std::shared_ptr<const IconImage> iconForProcess(Pid pid) override;
    /// The same for every name.
    [[nodiscard]] std::shared_ptr<const IconImage> genericApplicationIcon(std::string_view name) override;
    /// Never calls the handler: the system does not tell when a process changes its icon.
    [[nodiscard]] Subscription observeProcessIcons(std::function<void(Pid)> /*handler*/) override { return {}; }
};

/// The system's symbols by name, and its standard colours. Main thread.
class MacSystemLooks final : public SystemLooks {
public:
    [[nodiscard]] std::optional<RgbColor> color(Color color, ColorScheme scheme) const override;
    [[nodiscard]] std::optional<PixelBuffer> symbol(std::string_view name, double pointSize, SymbolWeight weight,
                                                    double scale) const override;
};

}  // namespace ferrowyn

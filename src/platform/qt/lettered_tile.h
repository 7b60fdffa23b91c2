#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "platform/icon_source.h"

namespace ferrowyn {

/// The last resort among icons: a rounded tile in a colour of the name's own, with the name's first character on it.
/// Main thread, with a QGuiApplication.
class LetteredTile final : public IconImage {
public:
    explicit LetteredTile(std::string_view name);

    [[nodiscard]] PixelBuffer render(int side) const override;

    /// The first user-perceived character of the name in upper case; empty for a blank name, which gets a plain tile.
    [[nodiscard]] const std::string& letter() const { return letter_; }
    /// 0 to 359. The same name has the same hue in every run and on every machine.
    [[nodiscard]] int hue() const { return hue_; }

private:
    std::string letter_;
    int hue_;
};

}  // namespace ferrowyn

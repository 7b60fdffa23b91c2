#pragma once

#include <QIcon>

#include "platform/icon_source.h"

namespace ferrowyn {

/// An icon of the toolkit: from a theme or a file, SVG or pixels. Drawn at the size asked for, from the best size that
/// the icon has. Main thread, with a QGuiApplication.
class QtIconImage final : public IconImage {
public:
    explicit QtIconImage(QIcon icon) : icon_(std::move(icon)) {}

    [[nodiscard]] PixelBuffer render(int side) const override;

private:
    QIcon icon_;
};

}  // namespace ferrowyn

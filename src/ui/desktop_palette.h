#pragma once

#include <QPalette>

#include "core/desktop_appearance.h"

namespace ferrowyn {

/// Makes the toolkit's palette, from which everything is drawn, that of the desktop. What the toolkit finds by itself
/// (a platform theme) stays where it is as light or dark as the desktop wants. Main thread, with a QApplication.
class DesktopPalette {
public:
    void apply(const DesktopAppearance& appearance);

private:
    /// The toolkit's own, as it was before this class changed it.
    QPalette own_;
    bool hasChanged_ = false;
};

}  // namespace ferrowyn

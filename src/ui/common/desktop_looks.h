#pragma once

#include <QPalette>

#include "core/desktop_appearance.h"
#include "platform/icon_source.h"

class QWidget;

namespace ferrowyn {

/// Gives the toolkit the desktop's palette, from which all colours are derived. A palette of a platform theme that is
/// already as light or dark as the desktop wants stays; only its accent colour changes. Main thread, with a
/// QApplication.
class DesktopPalette {
public:
    void apply(const DesktopAppearance& appearance);

private:
    /// The toolkit's palette before this class changed it.
    QPalette own_;
    bool hasChanged_ = false;
};

/// Whether windows are dark in this palette.
[[nodiscard]] bool isDark(const QPalette& palette);

/// While this object lives, everything is painted with these looks, which outlive it. Like the toolkit's palette they
/// are global, because every widget needs them when it paints. Main thread.
class SystemLooksInUse {
public:
    explicit SystemLooksInUse(const SystemLooks& looks);
    ~SystemLooksInUse();
    SystemLooksInUse(const SystemLooksInUse&) = delete;
    SystemLooksInUse& operator=(const SystemLooksInUse&) = delete;

    /// Null where the desktop provides none.
    [[nodiscard]] static const SystemLooks* current();
};

/// Whether the desktop asks for reduced motion: its style animates nothing, or the environment variable
/// FERROWYN_REDUCED_MOTION is a number other than 0. Main thread.
[[nodiscard]] bool prefersReducedMotion(const QWidget& widget);

}  // namespace ferrowyn

#pragma once

#include <QPalette>

#include "core/desktop_appearance.h"
#include "platform/icon_source.h"

class QWidget;

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

/// Whether windows are dark in this palette.
[[nodiscard]] bool isDark(const QPalette& palette);

/// Has everything that is drawn use these looks for as long as this lives; the looks outlive it. As the toolkit's
/// palette, they are one for all widgets, which ask for them whenever they draw. Main thread.
class SystemLooksInUse {
public:
    explicit SystemLooksInUse(const SystemLooks& looks);
    ~SystemLooksInUse();
    SystemLooksInUse(const SystemLooksInUse&) = delete;
    SystemLooksInUse& operator=(const SystemLooksInUse&) = delete;

    /// Null on a desktop that has none.
    [[nodiscard]] static const SystemLooks* current();
};

/// Whether the desktop asks for as little motion as possible: its style animates nothing, or the environment variable
/// FERROWYN_REDUCED_MOTION is set to something other than 0. Main thread.
[[nodiscard]] bool prefersReducedMotion(const QWidget& widget);

}  // namespace ferrowyn

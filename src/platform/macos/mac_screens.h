#pragma once

#include "platform/screens.h"

namespace ferrowyn {

/// The screens, in the coordinates in which macOS places windows: y grows upward, and the first screen, which has the
/// menu bar, has its lower left corner at the origin. Main thread.
class MacScreens final : public Screens {
public:
    [[nodiscard]] std::vector<Screen> all() const override;
    [[nodiscard]] std::optional<Screen> main() const override;
    [[nodiscard]] Subscription observe(std::function<void()> handler) const override;
};

/// The mouse pointer. Main thread.
class MacPointer final : public Pointer {
public:
    [[nodiscard]] Point location() const override;
    /// Does nothing: `location` asks the system each time.
    void refresh() override {}
    /// Presses in the program's own windows do not count: the system's global monitor does not see them.
    [[nodiscard]] Subscription observeClicksElsewhere(std::function<void()> handler) override;
};

}  // namespace ferrowyn

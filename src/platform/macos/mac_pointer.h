#pragma once

#include "platform/screens.h"

namespace ferrowyn {

/// The mouse pointer. Main thread.
class MacPointer final : public Pointer {
public:
    [[nodiscard]] Point location() const override;
    /// The system's answer is of this moment already.
    void refresh() override {}
    /// Presses in the program's own windows do not count: the system's global monitor sees none of them.
    [[nodiscard]] Subscription observeClicksElsewhere(std::function<void()> handler) override;
};

}  // namespace ferrowyn

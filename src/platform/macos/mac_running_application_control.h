#pragma once

#include "platform/macos/mac_application_control.h"

namespace ferrowyn {

/// Asks NSRunningApplication. Main thread.
class MacRunningApplicationControl final : public MacApplicationControl {
public:
    [[nodiscard]] bool isHidden(Pid pid) const override;
    void unhide(Pid pid) override;
    void activate(Pid pid) override;
    [[nodiscard]] bool isActive(Pid pid) const override;
};

}  // namespace ferrowyn

#pragma once

#include <functional>

#include "platform/screens.h"
#include "tests/platform/contract/contract.h"

namespace ferrowyn::contract {

/// One screen, of which a dock of some height at the upper edge takes a part. What happens is told inside `runUntil`.
class ScreensDriver {
public:
    virtual ~ScreensDriver() = default;

    virtual Screens& screens() = 0;
    virtual void showDock(double height) = 0;
    virtual void removeDock() = 0;
    [[nodiscard]] virtual bool runUntil(const std::function<bool()>& predicate) = 0;
};

class ScreensContract : public Contract<ScreensDriver> {};

}  // namespace ferrowyn::contract

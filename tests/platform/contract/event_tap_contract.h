#pragma once

#include "platform/event_tap.h"
#include "tests/platform/contract/contract.h"

namespace ferrowyn::contract {

/// A keyboard in front of an application. The trigger modifier is Option.
class KeyboardDriver {
public:
    virtual ~KeyboardDriver() = default;

    virtual EventTaps& taps() = 0;
    /// Holds the modifier and presses Tab.
    virtual void pressTrigger() = 0;
    virtual void releaseTrigger() = 0;
    /// Whether the Tab of the last trigger, which has been let go, reached the application.
    [[nodiscard]] virtual bool applicationGotTrigger() = 0;
};

class EventTapContract : public Contract<KeyboardDriver> {
protected:
    /// A tap that was disabled is not asked any more, but the desktop may take a moment to let the keys pass it by.
    [[nodiscard]] bool applicationSoonGetsTrigger();
};

}  // namespace ferrowyn::contract

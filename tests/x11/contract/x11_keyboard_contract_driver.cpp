#include <xcb/xcb.h>

#include <algorithm>
#include <stdexcept>

#include "platform/x11/x11_event_taps.h"
#include "tests/platform/contract/event_tap_contract.h"
#include "tests/x11/harness/private_x_server.h"
#include "tests/x11/harness/test_desktop.h"
#include "tests/x11/harness/test_input.h"
#include "tests/x11/harness/test_window.h"
#include "tests/x11/inventory_fixture.h"

namespace ferrowyn::contract {
namespace {

namespace key = x11test::key;

/// Real keys over a window that has the keyboard. No window manager: one would have a use of its own for the trigger.
class X11KeyboardDriver final : public KeyboardDriver {
public:
    X11KeyboardDriver() {
        if (!desktop_.waitUntil([&] { return desktop_.isViewable(window_.id()); })) {
            throw std::runtime_error("waited in vain for the window to be shown");
        }
        xcb_set_input_focus(window_.connection(), XCB_INPUT_FOCUS_POINTER_ROOT, window_.id(), XCB_CURRENT_TIME);
        static_cast<void>(window_.takeInput());
    }

    EventTaps& taps() override { return taps_; }
    void pressTrigger() override {
        static_cast<void>(window_.takeInput());
        input_.press(key::leftAlt);
        input_.press(key::tab);
    }
    void releaseTrigger() override {
        input_.release(key::tab);
        input_.release(key::leftAlt);
    }
    bool applicationGotTrigger() override {
        // What holds the keyboard gives it back in its own time; keys that are pressed after that reach the window.
        if (!desktop_.waitForUntouchedKeyboard()) {
            throw std::runtime_error("waited in vain for the keyboard to be free");
        }
        return std::ranges::count(window_.takeInput().keyPresses, key::tab) > 0;
    }

private:
    x11test::PrivateXServer server_;
    x11test::TestDesktop desktop_{server_.display()};
    x11test::TestInput input_{server_.display()};
    x11test::TestWindow window_{server_.display(), {}};
    x11test::RememberingLog log_;
    X11InputContext context_;
    X11EventTaps taps_{context_, log_, server_.display()};
};

FERROWYN_HOLDS_TO(EventTapContract, X11, std::make_unique<X11KeyboardDriver>());

}  // namespace
}  // namespace ferrowyn::contract

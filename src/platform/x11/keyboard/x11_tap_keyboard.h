#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "core/switcher_options.h"
#include "platform/x11/keyboard/x11_keyboard_event.h"
#include "platform/x11/keyboard/x11_keyboard_grabs.h"
#include "platform/x11/keyboard/x11_keyboard_layout.h"
#include "platform/x11/keyboard/x11_keyboard_reader.h"

namespace ferrowyn {

class Log;
class X11Connection;

/// What the user's keyboards are to a tap: their layout, which of their keys are the trigger, the grabs of these, and
/// what their modifiers are called. Tap thread.
class X11TapKeyboard {
public:
    /// Null when the server's keymap cannot be read. Waits for the server. The references outlive this.
    [[nodiscard]] static std::unique_ptr<X11TapKeyboard> create(const X11Connection& connection,
                                                                SwitcherModifier trigger, Log& log);

    [[nodiscard]] const X11KeyboardLayout& layout() const { return *layout_; }
    [[nodiscard]] X11KeyText& text() { return text_; }
    [[nodiscard]] X11KeyboardGrabs& grabs() { return grabs_; }

    /// These take effect with the next `applyGrabs`.
    void setTrigger(SwitcherModifier trigger) { trigger_ = trigger; }
    /// Reads again what has changed. Waits for the server.
    void refresh(const X11KeyboardReader::Changes& changes);
    /// Works out what is to be grabbed. While the keyboard is held as a whole the grabs are put off.
    void applyGrabs(bool isEnabled, bool isKeyboardHeld);

    [[nodiscard]] SwitcherModifier trigger() const { return trigger_; }
    /// The real modifiers that the trigger's modifier stands for.
    [[nodiscard]] std::uint32_t triggerMask() const { return layout_->maskOf(trigger_); }
    [[nodiscard]] bool isTrigger(const X11KeyboardEvent& event) const;
    /// Whether a slave's own grab delivered the event, past the master.
    [[nodiscard]] bool isAtSlave(const X11KeyboardEvent& event) const;
    /// Which key the callback is told.
    [[nodiscard]] std::uint16_t virtualKeyCodeOf(const X11KeyboardEvent& event);
    /// The flags that the callback is told when the modifiers change.
    [[nodiscard]] std::uint64_t flagsOf(std::uint32_t modifiers) const { return layout_->flagsOf(modifiers); }
    /// The flags that it is told with a key. Control is Command as well there, unless it is the trigger: the switcher's
    /// shortcuts are pressed with it. Not with the trigger's own keys, or Control would stand in for the modifier.
    [[nodiscard]] std::uint64_t flagsOf(const X11KeyboardEvent& event) const;

private:
    X11TapKeyboard(const X11Connection& connection, SwitcherModifier trigger, Log& log);
    void readLayout();
    [[nodiscard]] bool isTriggerKey(std::uint32_t keyCode) const;

    const X11Connection& connection_;
    SwitcherModifier trigger_;
    Log& log_;
    std::unique_ptr<xkb_context, XkbUnref> xkbContext_;
    std::unique_ptr<X11KeyboardLayout> layout_;
    X11KeyText text_;
    X11KeyboardGrabs grabs_;
    std::vector<std::uint32_t> triggerKeyCodes_;
};

}  // namespace ferrowyn

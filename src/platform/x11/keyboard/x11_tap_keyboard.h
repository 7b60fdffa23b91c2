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

/// The keyboard layout, the trigger keys, their grabs and the modifier names that a tap uses. Tap thread.
class X11TapKeyboard {
public:
    /// Null when the server's keymap cannot be read. Waits for the server. The references outlive this.
    [[nodiscard]] static std::unique_ptr<X11TapKeyboard> create(const X11Connection& connection,
                                                                SwitcherModifier trigger, Log& log);

    [[nodiscard]] const X11KeyboardLayout& layout() const { return *layout_; }
    [[nodiscard]] X11KeyText& text() { return text_; }
    [[nodiscard]] X11PassiveGrabs& grabs() { return grabs_; }

    /// These take effect with the next `applyGrabs`.
    void setTrigger(SwitcherModifier trigger) { trigger_ = trigger; }
    /// Reads the layout or the devices again after a change. Waits for the server.
    void refresh(const X11KeyboardReader::Changes& changes);
    /// Updates the passive grabs. While the tap has an active grab of the keyboard, the update is postponed.
    void applyGrabs(bool isEnabled, bool isKeyboardHeld);

    [[nodiscard]] SwitcherModifier trigger() const { return trigger_; }
    /// The real modifiers that the trigger's modifier stands for.
    [[nodiscard]] std::uint32_t triggerMask() const { return layout_->maskOf(trigger_); }
    [[nodiscard]] bool isTrigger(const X11KeyboardEvent& event) const;
    /// Whether a grab on a slave delivered the event, so that the master does not know of it.
    [[nodiscard]] bool isAtSlave(const X11KeyboardEvent& event) const;
    /// The key code for the callback.
    [[nodiscard]] std::uint16_t virtualKeyCodeOf(const X11KeyboardEvent& event);
    /// The flags for the callback when the modifiers change.
    [[nodiscard]] std::uint64_t flagsOf(std::uint32_t modifiers) const { return layout_->flagsOf(modifiers); }
    /// The flags for the callback with a key. Control also sets Command, because the switcher's shortcuts use Control
    /// on this desktop; not when Control is the trigger, and not for the trigger's keys, where it would count as the
    /// trigger's modifier.
    [[nodiscard]] std::uint64_t flagsOf(const X11KeyboardEvent& event) const;

private:
    X11TapKeyboard(const X11Connection& connection, SwitcherModifier trigger, Log& log);
    /// False when the server's keymap cannot be read; the layout stays as it was.
    [[nodiscard]] bool readLayout();
    [[nodiscard]] bool isTriggerKey(std::uint32_t keyCode) const;

    const X11Connection& connection_;
    SwitcherModifier trigger_;
    Log& log_;
    std::unique_ptr<xkb_context, XkbUnref> xkbContext_;
    std::unique_ptr<X11KeyboardLayout> layout_;
    X11KeyText text_;
    X11PassiveGrabs grabs_;
    std::vector<std::uint32_t> triggerKeyCodes_;
};

}  // namespace ferrowyn

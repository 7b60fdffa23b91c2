#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <utility>

#include "platform/x11/x11_screens.h"

namespace ferrowyn {

/// The little that the tap thread and the rest of the adapter tell each other. Every member is safe on any thread.
struct X11InputContext {
    /// The server time of the latest key or button event of the user, for activation requests: a manager distrusts
    /// CurrentTime. 0 before the first event.
    std::atomic<std::uint32_t> lastUserTime{0};

    /// The tap's thread hears of keys, the main thread of clicks, and either may be a little late: an older time is not
    /// taken. One that is older by much more than that is the clock, which wraps around after some weeks.
    void noteUserTime(std::uint32_t time) {
        constexpr std::uint32_t latest = 60'000;
        auto known = lastUserTime.load(std::memory_order_relaxed);
        while ((known == 0 || known - time > latest) &&
               !lastUserTime.compare_exchange_weak(known, time, std::memory_order_relaxed)) {
        }
    }

    /// The server time of the user's latest click anywhere; 0 before the first.
    std::atomic<std::uint32_t> lastClickTime{0};

    /// Where the pointer was at the latest event that said so: root x in the upper half, root y in the lower, in device
    /// pixels. Asking the server would be a round trip between key press and panel.
    std::atomic<std::uint64_t> pointerPosition{0};

    void setPointer(std::uint32_t rootX, std::uint32_t rootY) {
        pointerPosition.store(static_cast<std::uint64_t>(rootX) << 32U | rootY, std::memory_order_relaxed);
    }
    [[nodiscard]] std::pair<std::uint32_t, std::uint32_t> pointer() const {
        const auto position = pointerPosition.load(std::memory_order_relaxed);
        return {static_cast<std::uint32_t>(position >> 32U), static_cast<std::uint32_t>(position)};
    }

    /// Where the panel is or was last, in device pixels, 16 bits each: x, y, width and height. 0 before that.
    std::atomic<std::uint64_t> panelPlace{0};

    void setPanel(const X11PixelRect& panel) {
        std::uint64_t place = 0;
        for (const int part : {panel.x, panel.y, panel.width, panel.height}) {
            place = place << 16U | static_cast<std::uint16_t>(part);
        }
        panelPlace.store(place, std::memory_order_relaxed);
    }
    [[nodiscard]] std::optional<X11PixelRect> panel() const {
        const auto place = panelPlace.load(std::memory_order_relaxed);
        const auto part = [place](unsigned shift) { return static_cast<std::int16_t>(place >> shift); };
        return place != 0 ? std::optional(X11PixelRect{part(48), part(32), part(16), part(0)}) : std::nullopt;
    }

    /// Where an input method shows what it offers, as in DISPLAY. None is asked where this is empty. Set before the tap
    /// is made.
    std::string inputMethodDisplay;

    /// Another client held the keyboard when the tap last asked for it.
    std::atomic<bool> isKeyboardHeldElsewhere{false};
    /// Asks the tap to try again whether it is still held; it answers by the flag above, a moment later. Only while it
    /// is held: a successful attempt would take the focus from the user's window for a moment.
    std::function<void()> requestKeyboardProbe;

    /// Runs something on the main thread soon. How the tap finds out whether that thread still takes the keys of an
    /// open panel: where this is empty, it counts as taking them. Set before the tap's thread starts.
    std::function<void(std::function<void()>)> postToMainThread;

    /// Told when another client has answered the trigger (`Trust::observeLostTriggers`). Set before the tap's thread
    /// starts.
    std::function<void()> reportLostTrigger;

    /// Told which window was the active one when the trigger was pressed, before the trigger itself is passed on: the
    /// main thread hears of activations by another way, and a quick hand presses the trigger before it has. None when
    /// the server did not say. Set before the tap's thread starts.
    std::function<void(std::uint32_t window)> reportActiveWindow;
};

}  // namespace ferrowyn

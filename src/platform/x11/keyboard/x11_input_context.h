#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <utility>

#include "platform/x11/x11_screens.h"

namespace ferrowyn {

/// The data that the tap thread and the rest of the adapter share. Each member is safe on any thread; the functions are
/// set before the tap's thread starts.
struct X11InputContext {
    /// The server time of the latest key or button event of the user, for activation requests: a manager distrusts
    /// CurrentTime. 0 before the first event.
    std::atomic<std::uint32_t> lastUserTime{0};

    /// The tap thread reports keys, the main thread clicks, and either may be late: an older time is ignored. A time
    /// that seems much older is newer, because the server's clock wraps around after some weeks.
    void noteUserTime(std::uint32_t time) {
        constexpr std::uint32_t latest = 60'000;
        auto known = lastUserTime.load(std::memory_order_relaxed);
        while ((known == 0 || known - time > latest) &&
               !lastUserTime.compare_exchange_weak(known, time, std::memory_order_relaxed)) {
        }
    }

    /// The server time of the user's latest click anywhere; 0 before the first.
    std::atomic<std::uint32_t> lastClickTime{0};

    /// The pointer's position in the latest event that had one: root x in the upper half, root y in the lower, in
    /// device pixels. Asking the server would be a round trip between key press and panel.
    std::atomic<std::uint64_t> pointerPosition{0};

    void setPointer(std::uint32_t rootX, std::uint32_t rootY) {
        pointerPosition.store(static_cast<std::uint64_t>(rootX) << 32U | rootY, std::memory_order_relaxed);
    }
    [[nodiscard]] std::pair<std::uint32_t, std::uint32_t> pointer() const {
        const auto position = pointerPosition.load(std::memory_order_relaxed);
        return {static_cast<std::uint32_t>(position >> 32U), static_cast<std::uint32_t>(position)};
    }

    /// The panel's present or last frame in device pixels: x, y, width and height, 16 bits each. 0 before the first.
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

    /// The display on which an input method shows its window, in the format of DISPLAY. When it is empty, no input
    /// method is used. Set before the tap is made.
    std::string inputMethodDisplay;

    /// Another client had an active keyboard grab when the tap last tried to grab the keyboard.
    std::atomic<bool> isKeyboardHeldElsewhere{false};
    /// Asks the tap to try the grab again; the flag above changes a moment later. Call it only while the flag is set: a
    /// successful grab takes the focus from the user's window for a moment.
    std::function<void()> requestKeyboardProbe;

    /// Posts work to the main thread. The tap uses it to find out whether that thread still handles the keys of an open
    /// panel; without this function the main thread counts as handling them.
    std::function<void(std::function<void()>)> postToMainThread;

    /// Called when another client has answered the trigger (`Trust::observeLostTriggers`).
    std::function<void()> reportLostTrigger;

    /// Called before a press of the trigger is delivered, with the window that was active at the press; None when the
    /// server did not say. After a quick second press the main thread may not have got the activation's event yet.
    std::function<void(std::uint32_t window)> reportActiveWindow;
};

}  // namespace ferrowyn

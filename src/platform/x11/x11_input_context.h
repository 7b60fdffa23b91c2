#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <utility>

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

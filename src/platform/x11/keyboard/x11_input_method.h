#pragma once

#include <systemd/sd-bus.h>

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "platform/x11/x11_screens.h"

namespace ferrowyn {

class Log;

/// What the user's input method makes of the keys of a session, where it is fcitx5: that one answers over the session
/// bus for a client without the focus, so nobody loses it. Its candidates are on a window of its own. Nothing here
/// waits; the tap's loop polls the connection, which is why it is none of the toolkit's. Tap thread.
class X11InputMethod {
public:
    using Clock = std::chrono::steady_clock;

    /// How long a key waits for its answer. After one that took longer, no key of that session is asked about any more.
    static constexpr std::chrono::milliseconds patience{1000};

    /// `display` as in DISPLAY; the input method shows its candidates there. The log outlives this.
    X11InputMethod(std::string display, Log& log);
    X11InputMethod(const X11InputMethod&) = delete;
    X11InputMethod& operator=(const X11InputMethod&) = delete;

    /// What to poll, and for what: -1 without a bus.
    [[nodiscard]] int descriptor() const;
    [[nodiscard]] short pollEvents() const;
    [[nodiscard]] std::optional<Clock::time_point> deadline() const;
    /// Handles what has arrived.
    void process();

    struct Key {
        std::uint32_t symbol = 0;
        std::uint32_t keyCode = 0;
        /// Real modifiers.
        std::uint32_t modifiers = 0;
        std::uint32_t time = 0;
    };
    /// A session begins or has ended: whatever was being composed is forgotten.
    void reset();
    /// Asks about this press; false when there is nobody to ask. The candidates are shown beside `panel`.
    [[nodiscard]] bool ask(const Key& key, const std::optional<X11PixelRect>& panel);
    /// Whether an answer is still to come.
    [[nodiscard]] bool isAsking() const { return isAsking_; }
    /// Whether the key that was asked about last was taken by the input method.
    [[nodiscard]] bool hasTakenKey() const { return hasTakenKey_; }
    /// The next text that the input method has typed; nothing when there is no more.
    [[nodiscard]] std::optional<std::u16string> takeText();

private:
    struct Close {
        void operator()(sd_bus* bus) const { sd_bus_close_unref(bus); }
        void operator()(sd_bus_slot* slot) const { sd_bus_slot_unref(slot); }
        void operator()(sd_bus_message* message) const { sd_bus_message_unref(message); }
    };
    using Slot = std::unique_ptr<sd_bus_slot, Close>;
    using Message = std::unique_ptr<sd_bus_message, Close>;

    void connect();
    void appeared();
    void lost();
    [[nodiscard]] Message contextCall(const char* member) const;
    void send(const Message& message) const;
    static int onOwner(sd_bus_message* message, void* self, sd_bus_error* error);
    static int onHasOwner(sd_bus_message* message, void* self, sd_bus_error* error);
    static int onContext(sd_bus_message* message, void* self, sd_bus_error* error);
    static int onText(sd_bus_message* message, void* self, sd_bus_error* error);
    static int onAnswer(sd_bus_message* message, void* self, sd_bus_error* error);

    std::string display_;
    Log& log_;
    std::unique_ptr<sd_bus, Close> bus_;
    Slot ownerMatch_;
    Slot hasOwner_;
    Slot creation_;
    Slot textMatch_;
    Slot question_;
    /// Our input context's path; empty while there is none.
    std::string context_;
    std::u16string text_;
    bool isAsking_ = false;
    bool hasTakenKey_ = false;
    /// In this session.
    bool isTooSlow_ = false;
};

}  // namespace ferrowyn

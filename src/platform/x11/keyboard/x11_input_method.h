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

/// Sends the keys of a session to the user's input method when that is fcitx5, which answers over the session bus also
/// for a client without the focus. fcitx5 shows its candidates in its window. Nothing here waits: the tap's loop polls
/// the bus connection, so it is one of sd-bus, not of Qt. Tap thread.
class X11InputMethod {
public:
    using Clock = std::chrono::steady_clock;

    /// How long a key waits for its answer. After a longer wait, no further key of that session is sent.
    static constexpr std::chrono::milliseconds patience{1000};

    /// `display`, in the format of DISPLAY, is where the input method shows its candidates. The log outlives this.
    X11InputMethod(std::string display, Log& log);
    X11InputMethod(const X11InputMethod&) = delete;
    X11InputMethod& operator=(const X11InputMethod&) = delete;

    /// The descriptor to poll, -1 without a bus, and the events to poll for.
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
    /// A session begins or has ended: an unfinished composition is discarded.
    void reset();
    /// Sends this press; false when no input method is there. The candidates are shown beside `panel`.
    [[nodiscard]] bool ask(const Key& key, const std::optional<X11PixelRect>& panel);
    /// Whether an answer is still to come.
    [[nodiscard]] bool isAsking() const { return isAsking_; }
    /// Whether the input method has used the last key that was sent.
    [[nodiscard]] bool hasTakenKey() const { return hasTakenKey_; }
    /// The next text that the input method has typed; nullopt when there is no more.
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

#pragma once

#include <xcb/xcb.h>

#include <QAbstractNativeEventFilter>
#include <QByteArray>
#include <optional>

namespace ferrowyn {

/// Any client can send any event to any window. Such an event is marked, and is not to be believed where only the
/// server knows what is so. Messages are meant to be sent.
[[nodiscard]] bool isSentByClient(const xcb_generic_event_t& event);
/// Its number, without the mark.
[[nodiscard]] std::uint8_t typeOf(const xcb_generic_event_t& event);

/// Keeps events that other clients have sent from the toolkit, which believes them all. Main thread; with a
/// QCoreApplication.
class X11SentEventFilter final : public QAbstractNativeEventFilter {
public:
    /// What nobody but the server can know (keys, clicks, what is on the screen), sent to any window. The conventions
    /// let a manager send where it has put a window, and a client that the selection is there.
    X11SentEventFilter();
    /// Everything sent to this window, messages too: one that no manager manages, and that nobody has anything to
    /// tell.
    explicit X11SentEventFilter(xcb_window_t unmanaged);

    bool nativeEventFilter(const QByteArray& eventType, void* message, qintptr* result) override;

private:
    [[nodiscard]] bool drops(const xcb_generic_event_t& event) const;

    std::optional<xcb_window_t> unmanaged_;
};

}  // namespace ferrowyn

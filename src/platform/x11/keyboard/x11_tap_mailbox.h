#pragma once

#include <deque>
#include <mutex>
#include <optional>

#include "core/switcher_options.h"
#include "platform/event_tap.h"

namespace ferrowyn {

/// A request from another thread to the tap thread.
struct X11TapRequest {
    enum class Kind { enable, disable, setTrigger, openSession, closeSession, probeKeyboard, keyboardUnavailable };
    Kind kind = Kind::enable;
    /// For `setTrigger`.
    SwitcherModifier trigger = SwitcherModifier::option;
    /// For `openSession` and `closeSession`.
    TapSession session{};
};

/// Carries requests to the tap thread in their order and wakes it. Any thread.
class X11TapMailbox {
public:
    X11TapMailbox();
    ~X11TapMailbox();
    X11TapMailbox(const X11TapMailbox&) = delete;
    X11TapMailbox& operator=(const X11TapMailbox&) = delete;

    /// Readable while something is in the box.
    [[nodiscard]] int fileDescriptor() const { return eventDescriptor_; }
    void post(const X11TapRequest& request);
    /// Wakes the reader without a request.
    void wake() const;
    [[nodiscard]] std::optional<X11TapRequest> take();
    /// Makes the descriptor unreadable until the next `post` or `wake`. Call it before taking the requests, so that
    /// none is missed.
    void acknowledge() const;

private:
    int eventDescriptor_;
    std::mutex lock_;
    std::deque<X11TapRequest> requests_;
};

}  // namespace ferrowyn

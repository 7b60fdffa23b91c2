#pragma once

#include <deque>
#include <mutex>
#include <optional>

#include "core/switcher_options.h"
#include "platform/event_tap.h"

namespace ferrowyn {

/// What other threads ask of the tap thread.
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
    /// Makes the reader look, without a request.
    void wake() const;
    [[nodiscard]] std::optional<X11TapRequest> take();
    /// Until the next `post` or `wake`. Called before the box is emptied, so that none is missed.
    void acknowledge() const;

private:
    int eventDescriptor_;
    std::mutex lock_;
    std::deque<X11TapRequest> requests_;
};

}  // namespace ferrowyn

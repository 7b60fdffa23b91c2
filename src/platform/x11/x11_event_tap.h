#pragma once

#include <poll.h>

#include <atomic>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>

#include "platform/event_tap.h"
#include "platform/x11/x11_tap_engine.h"
#include "platform/x11/x11_tap_mailbox.h"

namespace ferrowyn {

/// The tap as other threads see it: requests go to the tap thread through the mailbox and never wait for it; only
/// `invalidate` waits, for the event that is being handled and for the server. What the tap thread itself asks is done
/// when the call returns: a tap that was enabled there has its grabs.
class X11EventTap final : public EventTap {
public:
    /// Null when there is no server any more, or it lacks what is needed. Called on the tap thread once the tap is
    /// served.
    using MakeEngine = std::function<std::unique_ptr<X11TapEngine>(SwitcherModifier trigger)>;

    X11EventTap(std::unique_ptr<X11TapEngine> engine, SwitcherModifier trigger, MakeEngine makeEngine);
    ~X11EventTap() override;

    void setEnabled(bool enabled) override;
    [[nodiscard]] bool isEnabled() const override { return isEnabled_.load(); }
    void invalidate() override;
    void setTrigger(SwitcherModifier modifier) override;
    void setSessionOpen(bool isOpen) override;

    /// The keyboard belongs to somebody else by now, such as a screen locker. Any thread.
    void noteKeyboardUnavailable();
    /// Tries whether another client still holds the keyboard. Any thread.
    void probeKeyboard();

    /// What the loop waits for: requests, and the server; the latter is -1 when there is no server any more.
    [[nodiscard]] int mailboxDescriptor() const { return mailbox_.fileDescriptor(); }
    [[nodiscard]] int connectionDescriptor() const;
    /// -1 when no input method is asked.
    [[nodiscard]] pollfd inputMethodDescriptor() const;
    /// The same for the guard's questions; -1 when there is none.
    [[nodiscard]] int guardDescriptor() const;
    [[nodiscard]] std::optional<X11TapEngine::Clock::time_point> deadline() const;
    /// The calling thread serves this tap from now on.
    void noteServingThread();
    /// Handles all that is waiting. Tap thread.
    void serve();

private:
    void post(const X11TapRequest& request);
    void handle(const X11TapRequest& request);
    void adopt(std::unique_ptr<X11TapEngine> engine);
    void replaceEngine();
    void connectAgain();

    X11TapMailbox mailbox_;
    std::atomic<std::thread::id> servingThread_{};
    /// Tap thread only: a callback asks for something while its event is being handled.
    bool isServing_ = false;
    std::atomic<bool> isEnabled_{false};
    /// Held while the tap thread serves, so that an invalidated tap delivers nothing any more.
    mutable std::mutex engineLock_;
    /// Null once the tap is invalidated.
    std::unique_ptr<X11TapEngine> engine_;
    /// Tap thread only, these.
    SwitcherModifier trigger_;
    MakeEngine makeEngine_;
    bool isConnected_ = true;
};

}  // namespace ferrowyn

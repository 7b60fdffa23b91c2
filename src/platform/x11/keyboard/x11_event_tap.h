#pragma once

#include <poll.h>

#include <atomic>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "platform/event_tap.h"
#include "platform/x11/keyboard/x11_input_context.h"
#include "platform/x11/keyboard/x11_tap_engine.h"
#include "platform/x11/keyboard/x11_tap_mailbox.h"

namespace ferrowyn {

class Log;

/// The tap's interface for all threads. Other threads post requests to the tap thread's mailbox and do not wait; only
/// `invalidate` waits, for the event that is being handled and for the server. Calls on the tap thread are done at
/// once: a tap that was enabled there has its grabs when the call returns.
class X11EventTap final : public EventTap {
public:
    /// Returns null when the server is gone or lacks an extension. Called on the tap thread.
    using MakeEngine = std::function<std::unique_ptr<X11TapEngine>(SwitcherModifier trigger)>;

    X11EventTap(std::unique_ptr<X11TapEngine> engine, SwitcherModifier trigger, MakeEngine makeEngine);
    ~X11EventTap() override;

    void setEnabled(bool enabled) override;
    [[nodiscard]] bool isEnabled() const override { return isEnabled_.load(); }
    void invalidate() override;
    void setTrigger(SwitcherModifier modifier) override;
    void openSession(TapSession session) override;
    void closeSession(TapSession session) override;

    /// Another client, such as a screen locker, needs the keyboard. Any thread.
    void noteKeyboardUnavailable();
    /// Tries whether another client still has an active keyboard grab. Any thread.
    void probeKeyboard();

    /// The loop polls the mailbox and the connection. The connection's descriptor is -1 when the server is gone.
    [[nodiscard]] int mailboxDescriptor() const { return mailbox_.fileDescriptor(); }
    [[nodiscard]] int connectionDescriptor() const;
    /// Its descriptor is -1 when no input method is used.
    [[nodiscard]] pollfd inputMethodDescriptor() const;
    /// The guard's socket; -1 when there is no guard.
    [[nodiscard]] int guardDescriptor() const;
    [[nodiscard]] std::optional<X11TapEngine::Clock::time_point> deadline() const;
    /// The calling thread serves this tap from now on.
    void noteServingThread();
    /// Handles all waiting requests and events. Tap thread.
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
    /// Held while the tap thread serves, so that nothing is delivered after `invalidate` has returned.
    mutable std::mutex engineLock_;
    /// Null after the tap was invalidated.
    std::unique_ptr<X11TapEngine> engine_;
    /// The members from here on belong to the tap thread.
    SwitcherModifier trigger_;
    MakeEngine makeEngine_;
    bool isConnected_ = true;
};

/// Serves taps on the thread that runs it.
class X11TapRunLoop final : public TapRunLoop {
public:
    void runFor(Seconds slice) override;
    void stop() override;

    /// Any thread.
    void add(const std::shared_ptr<X11EventTap>& tap);
    void remove(const std::shared_ptr<X11EventTap>& tap);

private:
    [[nodiscard]] std::vector<std::shared_ptr<X11EventTap>> taps() const;

    /// Only used to wake the loop.
    X11TapMailbox bell_;
    mutable std::mutex lock_;
    std::vector<std::shared_ptr<X11EventTap>> taps_;
    bool isStopped_ = false;
};

/// The run-loop source of one tap. It shares the ownership of the tap with the tap's user.
class X11TapRunLoopSource final : public TapRunLoopSource {
public:
    explicit X11TapRunLoopSource(std::shared_ptr<X11EventTap> tap) : tap_(std::move(tap)) {}

    void addTo(TapRunLoop& loop) override;
    void removeFrom(TapRunLoop& loop) override;

private:
    std::shared_ptr<X11EventTap> tap_;
};

/// The tap's thread, with the highest scheduling priority that the user's limits allow.
class X11TapThread final : public TapThread {
public:
    /// Throws std::system_error when the thread cannot be started.
    X11TapThread(const std::string& name, std::function<void()> body);
    ~X11TapThread() override;
    X11TapThread(const X11TapThread&) = delete;
    X11TapThread& operator=(const X11TapThread&) = delete;

private:
    std::thread thread_;
};

/// Makes keyboard taps on X11 and sets the context's `requestKeyboardProbe`. Context and log outlive it.
class X11EventTaps final : public EventTaps {
public:
    /// `display` has the format of DISPLAY; empty means the environment's display.
    X11EventTaps(X11InputContext& context, Log& log, std::string display = {});
    ~X11EventTaps() override;

    [[nodiscard]] std::shared_ptr<EventTap> create(std::uint64_t mask, SwitcherModifier trigger,
                                                   Callback callback) override;
    [[nodiscard]] std::shared_ptr<TapRunLoopSource> createSource(const std::shared_ptr<EventTap>& tap) override;
    [[nodiscard]] std::shared_ptr<TapRunLoop> currentRunLoop() override;
    [[nodiscard]] std::unique_ptr<TapThread> startThread(std::string_view name, std::function<void()> body) override;

    /// The session is being locked, or another client needs the keyboard: the tap ungrabs it and reports that the user
    /// disabled the tap. Any thread.
    void notifyKeyboardUnavailable();

private:
    [[nodiscard]] std::shared_ptr<X11EventTap> currentTap() const;

    X11InputContext& context_;
    Log& log_;
    std::string display_;
    mutable std::mutex lock_;
    std::weak_ptr<X11EventTap> currentTap_;
};

}  // namespace ferrowyn

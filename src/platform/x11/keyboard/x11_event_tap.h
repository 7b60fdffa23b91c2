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
    void openSession(TapSession session) override;
    void closeSession(TapSession session) override;

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

/// Serves taps on the thread that runs it.
class X11TapRunLoop final : public TapRunLoop {
public:
    void runFor(Seconds slice) override;
    void stop() override;

    /// From any thread.
    void add(const std::shared_ptr<X11EventTap>& tap);
    void remove(const std::shared_ptr<X11EventTap>& tap);

private:
    [[nodiscard]] std::vector<std::shared_ptr<X11EventTap>> taps() const;

    /// Only for its bell.
    X11TapMailbox bell_;
    mutable std::mutex lock_;
    std::vector<std::shared_ptr<X11EventTap>> taps_;
    bool isStopped_ = false;
};

/// The source of one tap. The tap belongs to whoever made it as much as to the source.
class X11TapRunLoopSource final : public TapRunLoopSource {
public:
    explicit X11TapRunLoopSource(std::shared_ptr<X11EventTap> tap) : tap_(std::move(tap)) {}

    void addTo(TapRunLoop& loop) override;
    void removeFrom(TapRunLoop& loop) override;

private:
    std::shared_ptr<X11EventTap> tap_;
};

/// The tap's thread, favoured by the scheduler as far as the user's limits allow.
class X11TapThread final : public TapThread {
public:
    /// Throws std::system_error when no thread can be made.
    X11TapThread(const std::string& name, std::function<void()> body);
    ~X11TapThread() override;
    X11TapThread(const X11TapThread&) = delete;
    X11TapThread& operator=(const X11TapThread&) = delete;

private:
    std::thread thread_;
};

/// Keyboard taps on X11. It assigns `requestKeyboardProbe` of the context, which outlives it, as the log does.
class X11EventTaps final : public EventTaps {
public:
    /// `display` as in DISPLAY; empty for the environment's.
    X11EventTaps(X11InputContext& context, Log& log, std::string display = {});
    ~X11EventTaps() override;

    [[nodiscard]] std::shared_ptr<EventTap> create(std::uint64_t mask, SwitcherModifier trigger,
                                                   Callback callback) override;
    [[nodiscard]] std::shared_ptr<TapRunLoopSource> createSource(const std::shared_ptr<EventTap>& tap) override;
    [[nodiscard]] std::shared_ptr<TapRunLoop> currentRunLoop() override;
    [[nodiscard]] std::unique_ptr<TapThread> startThread(std::string_view name, std::function<void()> body) override;

    /// The session was locked, or something else took the keyboard away: the tap gives it back and reports that the
    /// user disabled it. From any thread.
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

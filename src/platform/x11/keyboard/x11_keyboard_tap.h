#pragma once

#include <atomic>
#include <functional>
#include <future>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <thread>

#include "platform/keyboard_tap.h"
#include "platform/x11/keyboard/x11_command_queue.h"
#include "platform/x11/keyboard/x11_input_context.h"
#include "platform/x11/keyboard/x11_tap_engine.h"

namespace ferrowyn {

class Log;

/// A tap's engine and the thread that serves it. Other threads post commands to that thread and do not wait; only the
/// destructor waits, for the event that is being handled and for the server.
class X11KeyboardTap final : public KeyboardTap {
public:
    /// Called on the main thread for the first engine, on the tap thread for each that replaces one.
    using MakeEngine = std::function<X11TapEngine::Creation(SwitcherModifier trigger)>;
    /// Exactly one of the two is set.
    struct Creation {
        std::unique_ptr<X11KeyboardTap> tap;
        std::string refusal;
    };

    /// Starts a tap as `KeyboardTaps::start` does. The log outlives the tap.
    [[nodiscard]] static Creation start(MakeEngine makeEngine, SwitcherModifier trigger, Log& log);
    ~X11KeyboardTap() override;
    X11KeyboardTap(const X11KeyboardTap&) = delete;
    X11KeyboardTap& operator=(const X11KeyboardTap&) = delete;

    void setEnabled(bool enabled) override;
    [[nodiscard]] bool isEnabled() const override { return isRequested_.load() && !isLost_.load(); }
    void setTrigger(SwitcherModifier modifier) override;
    void openSession(TapSession session) override;
    void closeSession(TapSession session) override;
    [[nodiscard]] bool hasGivenUp(TapSession session) const override;

    /// Does something with the engine on the tap thread, unless the connection to the server is lost. Any thread.
    void post(std::function<void(X11TapEngine&)> command);

    /// Called when the destructor begins. Set on the main thread.
    std::function<void()> onRemoval = [] {};

private:
    X11KeyboardTap(std::unique_ptr<X11TapEngine> engine, MakeEngine makeEngine, SwitcherModifier trigger, Log& log);

    [[nodiscard]] bool startThread();
    // From here on, tap thread.
    void run();
    void waitForEvents() const;
    void enable();
    void adopt(std::unique_ptr<X11TapEngine> engine);
    void replaceEngine();
    void connectAgain();

    Log& log_;
    X11CommandQueue commands_;
    /// The last value given to `setEnabled`.
    std::atomic<bool> isRequested_{true};
    /// The tap disabled itself or lost its connection, and has not been enabled since.
    std::atomic<bool> isLost_{false};
    /// False from the loss of the connection until there is a new one.
    std::atomic<bool> isConnected_{true};
    std::promise<void> served_;
    mutable std::mutex givenUpLock_;
    /// Requests that the main thread has not answered yet.
    std::set<TapSession> givenUp_;
    /// The members from here on belong to the tap thread once it runs.
    std::unique_ptr<X11TapEngine> engine_;
    MakeEngine makeEngine_;
    SwitcherModifier trigger_;
    bool isEnding_ = false;

    std::thread thread_;
};

/// Starts keyboard taps on X11 and sets the context's `requestKeyboardProbe`. Context and log outlive it.
class X11KeyboardTaps final : public KeyboardTaps {
public:
    /// `display` has the format of DISPLAY; empty means the environment's display.
    X11KeyboardTaps(X11InputContext& context, Log& log, std::string display = {});
    ~X11KeyboardTaps() override;

    [[nodiscard]] Start start(SwitcherModifier trigger, TapCallback callback) override;

    /// The session is being locked, or another client needs the keyboard: the tap ungrabs it and reports that the user
    /// disabled the tap. Any thread.
    void notifyKeyboardUnavailable();

private:
    /// To the tap started last, while there is one.
    void post(std::function<void(X11TapEngine&)> command);

    X11InputContext& context_;
    Log& log_;
    std::string display_;
    std::mutex lock_;
    X11KeyboardTap* currentTap_ = nullptr;
};

}  // namespace ferrowyn

#pragma once

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <random>
#include <string>
#include <string_view>
#include <thread>
#include <utility>
#include <vector>

#include "platform/keyboard_tap.h"
#include "platform/log.h"
#include "platform/x11/keyboard/x11_input_context.h"
#include "platform/x11/keyboard/x11_keyboard_tap.h"
#include "platform/x11/x11_connection.h"
#include "tests/x11/harness/child_process.h"

namespace ferrowyn::x11test {

/// Does something as soon as a certain message is written.
class HookedLog final : public Log {
public:
    void write(LogLevel /*level*/, std::string_view /*category*/, std::string_view message) override {
        if (message == awaited) {
            if (const auto hook = std::exchange(onMessage, nullptr)) {
                hook();
            }
        }
    }

    std::string_view awaited;
    std::function<void()> onMessage;
};

/// A keyboard tap on its own thread, with a switcher reduced to what the tap sees of one: a callback that classifies,
/// and a main thread that opens and closes sessions when it gets round to it.
class TapRig {
public:
    struct Options {
        SwitcherModifier trigger = SwitcherModifier::option;
        /// The main thread is busy for a random time up to this before each command.
        milliseconds maximumMainDelay{0};
        /// Whether the main thread opens a session when asked; without, it says that it does not.
        bool opensSessions = true;
        /// Whether it answers at all.
        bool answers = true;
        /// Whether releasing the modifier ends a session.
        bool holdMode = true;
        unsigned seed = 1;
    };
    /// One event as the callback saw it.
    struct Seen {
        TapEvent::Type type = TapEvent::Type::keyDown;
        std::uint64_t flags = 0;
        std::uint16_t keyCode = 0;
        /// As a switcher asks for it: with the modifiers other than Shift taken away.
        std::u16string text;
        bool wasVisible = false;
    };

    TapRig(const std::string& display, const Options& options);
    ~TapRig();
    TapRig(const TapRig&) = delete;
    TapRig& operator=(const TapRig&) = delete;

    [[nodiscard]] X11KeyboardTap& tap() { return dynamic_cast<X11KeyboardTap&>(*tap_); }
    [[nodiscard]] X11KeyboardTaps& taps() { return taps_; }
    [[nodiscard]] X11InputContext& context() { return context_; }

    /// Waits until the tap has handled everything that the server had for it by now, and the main thread as well.
    [[nodiscard]] bool settle();
    [[nodiscard]] bool waitUntil(const std::function<bool()>& predicate, milliseconds budget = patience);
    [[nodiscard]] bool waitForOpened(int count);
    [[nodiscard]] bool waitForClosed(int count);

    [[nodiscard]] int opened() const { return opened_; }
    [[nodiscard]] int closed() const { return closed_; }
    /// How often the selection moved in an open session.
    [[nodiscard]] int moves() const { return moves_; }
    [[nodiscard]] int requests() const { return requests_; }
    [[nodiscard]] bool isVisible() const { return isVisible_; }
    [[nodiscard]] std::vector<Seen> seen() const;
    void forgetSeen();
    /// For predicates of `waitUntil`, which run under the lock.
    [[nodiscard]] const std::vector<Seen>& seenWhileWaiting() const { return seen_; }
    /// What was typed in sessions, in order; for predicates of `waitUntil`.
    [[nodiscard]] std::u16string typedWhileWaiting() const;
    [[nodiscard]] bool waitForOpenedWithin(int count, milliseconds budget);
    /// CPU time of the tap thread so far.
    [[nodiscard]] std::chrono::nanoseconds tapThreadCpuTime() const;
    /// Called on the tap thread as a trigger arrives.
    std::function<void()> onTrigger;

    /// From the menu, or by a click elsewhere: on the main thread, without a key.
    void openFromMenu();
    void close();
    /// Destroys the tap; the rig has none after that.
    void removeTap() { tap_.reset(); }

private:
    struct Command {
        enum class Kind { invoke, modifierReleased, cancel, openFromMenu, close };
        Kind kind = Kind::invoke;
        /// What an `invoke` asks for; absent when it moves the selection.
        std::optional<TapSession> request;
    };

    class QuietLog : public Log {
    public:
        void write(LogLevel level, std::string_view category, std::string_view message) override;
    };

    TapVerdict handle(const TapEvent& event);
    TapVerdict handleKeyDown(const TapEvent& event, bool wasVisible);
    void record(const TapEvent& event, const std::u16string& text, bool wasVisible);
    void post(const Command& command);
    /// Waits until the tap's thread has run a command. It handles what the server has for it after its commands.
    [[nodiscard]] bool waitForTapThread();
    void runMain();
    void execute(const Command& command);
    void open(TapSession session, bool isHoldModeActive);
    [[nodiscard]] TapSession nextSession() { return TapSession{++sessionCount_}; }

    Options options_;
    QuietLog log_;
    X11InputContext context_;
    X11KeyboardTaps taps_;
    std::unique_ptr<X11Connection> observer_;
    std::unique_ptr<KeyboardTap> tap_;
    std::atomic<pthread_t> tapThreadHandle_{};

    mutable std::mutex lock_;
    std::condition_variable changed_;
    std::atomic<bool> isVisible_{false};
    std::atomic<bool> isHoldModeActive_{false};
    std::atomic<std::uint64_t> sessionCount_{0};
    /// The open session. Main thread.
    std::optional<TapSession> session_;
    std::atomic<int> opened_{0};
    std::atomic<int> closed_{0};
    std::atomic<int> moves_{0};
    std::atomic<int> requests_{0};
    std::vector<Seen> seen_;
    std::deque<Command> commands_;
    bool isMainBusy_ = false;
    /// Counts the commands of `settle` that the tap's thread has run.
    int laps_ = 0;
    bool isEnding_ = false;
    std::mt19937 random_;
    std::thread mainThread_;
};

}  // namespace ferrowyn::x11test

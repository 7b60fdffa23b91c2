#include "platform/macos/mac_keyboard_tap.h"

#include <CoreFoundation/CoreFoundation.h>
#include <pthread.h>

#include <algorithm>
#include <condition_variable>
#include <future>
#include <mutex>
#include <string>
#include <system_error>
#include <thread>
#include <vector>

#include "platform/macos/cf_values.h"

namespace ferrowyn {

namespace {

template <typename Ours, typename Systems>
constexpr bool isSame(Ours ours, Systems systems) {
    return static_cast<std::uint64_t>(ours) == static_cast<std::uint64_t>(systems);
}

// The logic speaks the system's own numbers.
static_assert(isSame(TapEvent::Type::keyDown, kCGEventKeyDown));
static_assert(isSame(TapEvent::Type::keyUp, kCGEventKeyUp));
static_assert(isSame(TapEvent::Type::flagsChanged, kCGEventFlagsChanged));
static_assert(isSame(TapEvent::Type::disabledByTimeout, kCGEventTapDisabledByTimeout));
static_assert(isSame(TapEvent::Type::disabledByUserInput, kCGEventTapDisabledByUserInput));
static_assert(isSame(event_flags::shift, kCGEventFlagMaskShift));
static_assert(isSame(event_flags::control, kCGEventFlagMaskControl));
static_assert(isSame(event_flags::option, kCGEventFlagMaskAlternate));
static_assert(isSame(event_flags::command, kCGEventFlagMaskCommand));

std::u16string textOf(CGEventRef event) {
    UniCharCount length = 0;
    CGEventKeyboardGetUnicodeString(event, 0, &length, nullptr);
    std::vector<UniChar> units(length);
    if (length > 0) {
        CGEventKeyboardGetUnicodeString(event, length, &length, units.data());
        units.resize(std::min<std::size_t>(units.size(), length));
    }
    return {units.begin(), units.end()};
}

}  // namespace

void MacTapEvent::prepareTexts() {
    constexpr CGKeyCode someKey = 0;
    if (const Owned<CGEventRef> event(CGEventCreateKeyboardEvent(nullptr, someKey, true)); event) {
        static_cast<void>(textOf(event.get()));
    }
}

TapEvent::Type MacTapEvent::type() const {
    return static_cast<Type>(type_);
}

std::uint64_t MacTapEvent::flags() const {
    return event_ != nullptr ? CGEventGetFlags(event_) : 0;
}

std::uint16_t MacTapEvent::keyCode() const {
    return event_ != nullptr ? static_cast<std::uint16_t>(CGEventGetIntegerValueField(event_, kCGKeyboardEventKeycode))
                             : 0;
}

std::u16string MacTapEvent::text(std::optional<std::uint64_t> withFlags) const {
    if (event_ == nullptr) {
        return {};
    }
    if (!withFlags) {
        return textOf(event_);
    }
    const Owned<CGEventRef> copy(CGEventCreateCopy(event_));
    if (!copy) {
        return textOf(event_);
    }
    CGEventSetFlags(copy.get(), static_cast<CGEventFlags>(*withFlags));
    return textOf(copy.get());
}

namespace {

constexpr CGEventMask keyboardMask =
    CGEventMaskBit(kCGEventKeyDown) | CGEventMaskBit(kCGEventKeyUp) | CGEventMaskBit(kCGEventFlagsChanged);

/// How long the loop runs before the thread looks whether it is still wanted, should a wake-up ever get lost.
constexpr Seconds runSlice{1.0};

/// The tap's port, the port's source on a thread's run loop, and that thread. Thread-safe, except for its destruction.
class MacKeyboardTap final : public KeyboardTap {
public:
    MacKeyboardTap(TapCallback callback, MacKeyboardTaps::InPool inPool)
        : callback_(std::move(callback)), inPool_(std::move(inPool)) {}
    ~MacKeyboardTap() override;
    MacKeyboardTap(const MacKeyboardTap&) = delete;
    MacKeyboardTap& operator=(const MacKeyboardTap&) = delete;

    /// Installs the tap and starts its thread; empty, or what the system refused. Called once.
    [[nodiscard]] std::string start();

    void setEnabled(bool enabled) override;
    [[nodiscard]] bool isEnabled() const override;
    void setTrigger(SwitcherModifier /*modifier*/) override {}
    void openSession(TapSession /*session*/) override {}
    void closeSession(TapSession /*session*/) override {}
    [[nodiscard]] bool hasGivenUp(TapSession /*session*/) const override { return false; }

private:
    static CGEventRef receive(CGEventTapProxy proxy, CGEventType type, CGEventRef event, void* userInfo);

    // Tap thread.
    void run();
    /// False when the tap is being removed already.
    [[nodiscard]] bool beginServing();
    void runForSlice();

    TapCallback callback_;
    MacKeyboardTaps::InPool inPool_;
    Owned<CFMachPortRef> port_;
    Owned<CFRunLoopSourceRef> source_;
    std::promise<void> served_;

    mutable std::mutex lock_;
    std::condition_variable ended_;
    bool isEnding_ = false;
    /// The loop that has the source; none until the thread serves the tap. Without it the system is not asked to enable
    /// the tap: every key would wait for a verdict that nobody gives.
    Owned<CFRunLoopRef> loop_;
    /// What was last asked for; the system may have disabled the tap since.
    bool wantsEnabled_ = true;

    std::thread thread_;
};

std::string MacKeyboardTap::start() {
    // The tap is its own user pointer.
    port_ = Owned<CFMachPortRef>(CGEventTapCreate(kCGSessionEventTap, kCGHeadInsertEventTap, kCGEventTapOptionDefault,
                                                  keyboardMask, receive, this));
    if (!port_) {
        return "CGEvent.tapCreate failed";
    }
    // The system hands out enabled taps. Until a thread serves this one, every key would wait for its verdict.
    CGEventTapEnable(port_.get(), false);
    source_ = Owned<CFRunLoopSourceRef>(CFMachPortCreateRunLoopSource(kCFAllocatorDefault, port_.get(), 0));
    if (!source_) {
        return "CFMachPortCreateRunLoopSource failed";
    }
    const auto served = served_.get_future();
    try {
        thread_ = std::thread([this] { run(); });
    } catch (const std::system_error&) {
        return std::string(KeyboardTaps::threadRefusal);
    }
    static_cast<void>(served.wait_for(KeyboardTaps::threadStartTimeout));
    return {};
}

MacKeyboardTap::~MacKeyboardTap() {
    {
        const std::scoped_lock guard(lock_);
        isEnding_ = true;
        if (loop_) {
            // In this order: a tap without a loop must be disabled, and a loop that is stopped while it does not run
            // goes on for a slice unless it has no source left.
            CGEventTapEnable(port_.get(), false);
            CFRunLoopRemoveSource(loop_.get(), source_.get(), kCFRunLoopCommonModes);
            CFRunLoopStop(loop_.get());
        }
    }
    ended_.notify_all();
    if (port_) {
        CFMachPortInvalidate(port_.get());
    }
    if (thread_.joinable()) {
        thread_.join();
    }
}

void MacKeyboardTap::setEnabled(bool enabled) {
    const std::scoped_lock guard(lock_);
    wantsEnabled_ = enabled;
    if (loop_) {
        CGEventTapEnable(port_.get(), enabled);
    }
}

bool MacKeyboardTap::isEnabled() const {
    const std::scoped_lock guard(lock_);
    return loop_ ? CGEventTapIsEnabled(port_.get()) : wantsEnabled_;
}

void MacKeyboardTap::run() {
    // Without its name or its class of service the thread does the same, only worse.
    static_cast<void>(pthread_setname_np(std::string(KeyboardTaps::threadName).c_str()));
    static_cast<void>(pthread_set_qos_class_self_np(QOS_CLASS_USER_INTERACTIVE, 0));
    if (!beginServing()) {
        return;
    }
    served_.set_value();
    const auto isWanted = [this] {
        const std::scoped_lock guard(lock_);
        return !isEnding_;
    };
    while (isWanted()) {
        runForSlice();
    }
}

bool MacKeyboardTap::beginServing() {
    const std::scoped_lock guard(lock_);
    if (isEnding_) {
        return false;
    }
    loop_ = Owned<CFRunLoopRef>::retaining(CFRunLoopGetCurrent());
    CFRunLoopAddSource(loop_.get(), source_.get(), kCFRunLoopCommonModes);
    if (wantsEnabled_) {
        CGEventTapEnable(port_.get(), true);
    }
    return true;
}

void MacKeyboardTap::runForSlice() {
    CFRunLoopRunResult result = kCFRunLoopRunFinished;
    // What the loop itself leaves behind goes with each slice.
    inPool_([&] { result = CFRunLoopRunInMode(kCFRunLoopDefaultMode, runSlice.count(), false); });
    if (result == kCFRunLoopRunFinished) {
        // A loop without a source, such as after the system has taken the tap's port, returns at once, and the thread
        // would turn as fast as it can.
        std::unique_lock guard(lock_);
        ended_.wait_for(guard, runSlice, [this] { return isEnding_; });
    }
}

CGEventRef MacKeyboardTap::receive(CGEventTapProxy /*proxy*/, CGEventType type, CGEventRef event, void* userInfo) {
    const auto* const tap = static_cast<const MacKeyboardTap*>(userInfo);
    if (tap == nullptr) {
        return event;
    }
    TapVerdict verdict;
    tap->inPool_([&] { verdict = tap->callback_(MacTapEvent(type, event)); });
    return verdict.isSwallowed ? nullptr : event;
}

}  // namespace

KeyboardTaps::Start MacKeyboardTaps::start(SwitcherModifier /*trigger*/, TapCallback callback) {
    MacTapEvent::prepareTexts();
    auto tap = std::make_unique<MacKeyboardTap>(std::move(callback), inPool_);
    auto refusal = tap->start();
    if (!refusal.empty()) {
        return {nullptr, std::move(refusal)};
    }
    return {std::move(tap), {}};
}

}  // namespace ferrowyn

#include "platform/macos/mac_event_taps.h"

#include <CoreFoundation/CoreFoundation.h>
#include <pthread.h>

#include <algorithm>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <string>
#include <system_error>
#include <thread>
#include <vector>

#include "platform/log.h"
#include "platform/macos/cf_values.h"

namespace ferrowyn {

/// A tap of the session's keyboard, ahead of all others. It filters every event, so it needs to know neither the
/// trigger nor the session. Thread-safe.
class MacEventTap final : public EventTap {
public:
    /// Null when the system refuses.
    [[nodiscard]] static std::shared_ptr<MacEventTap> create(std::uint64_t mask, EventTaps::Callback callback);
    ~MacEventTap() override;
    MacEventTap(const MacEventTap&) = delete;
    MacEventTap& operator=(const MacEventTap&) = delete;

    void setEnabled(bool enabled) override;
    [[nodiscard]] bool isEnabled() const override;
    void invalidate() override;
    void setTrigger(SwitcherModifier /*modifier*/) override {}
    void openSession(TapSession /*session*/) override {}
    void closeSession(TapSession /*session*/) override {}

    /// Whether a thread's loop has the tap's source. Without one the system is not asked to enable the tap: every key
    /// would wait for a verdict that nobody gives.
    void setServed(bool isServed);

    /// Borrowed from this.
    [[nodiscard]] CFMachPortRef port() const { return port_.get(); }

private:
    explicit MacEventTap(EventTaps::Callback callback) : callback_(std::move(callback)) {}

    static CGEventRef receive(CGEventTapProxy proxy, CGEventType type, CGEventRef event, void* userInfo);

    EventTaps::Callback callback_;
    Owned<CFMachPortRef> port_;
    mutable std::mutex lock_;
    bool isValid_ = true;
    bool isServed_ = false;
    /// What was last asked for; the system may have disabled the tap since.
    bool wantsEnabled_ = false;
};

/// A thread's run loop as the tap thread uses it.
class MacTapRunLoop final : public TapRunLoop {
public:
    MacTapRunLoop(Owned<CFRunLoopRef> loop, MacEventTaps::InPool inPool)
        : loop_(std::move(loop)), inPool_(std::move(inPool)) {}

    void runFor(Seconds slice) override;
    void stop() override;

    /// Borrowed from this.
    [[nodiscard]] CFRunLoopRef loop() const { return loop_.get(); }

private:
    [[nodiscard]] bool takeStop();

    Owned<CFRunLoopRef> loop_;
    MacEventTaps::InPool inPool_;
    std::mutex lock_;
    std::condition_variable stopped_;
    bool isStopped_ = false;
};

/// The source of one tap's port, in the common modes of the loop it is added to. Each call from the thread that its
/// interface says.
class MacTapRunLoopSource final : public TapRunLoopSource {
public:
    /// Null when the system makes none.
    [[nodiscard]] static std::shared_ptr<MacTapRunLoopSource> create(std::shared_ptr<MacEventTap> tap);

    void addTo(TapRunLoop& loop) override;
    void removeFrom(TapRunLoop& loop) override;

private:
    MacTapRunLoopSource(std::shared_ptr<MacEventTap> tap, Owned<CFRunLoopSourceRef> source)
        : tap_(std::move(tap)), source_(std::move(source)) {}

    /// What the source delivers goes to the tap, which therefore lives as long.
    std::shared_ptr<MacEventTap> tap_;
    Owned<CFRunLoopSourceRef> source_;
};

/// The tap's thread, at the highest quality of service: a key must not wait behind whatever the machine is busy with.
class MacTapThread final : public TapThread {
public:
    /// Throws std::system_error when no thread can be made.
    MacTapThread(std::string name, std::function<void()> body);
    ~MacTapThread() override;
    MacTapThread(const MacTapThread&) = delete;
    MacTapThread& operator=(const MacTapThread&) = delete;

private:
    std::thread thread_;
};

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

std::shared_ptr<EventTap> MacEventTaps::create(std::uint64_t mask, SwitcherModifier /*trigger*/, Callback callback) {
    MacTapEvent::prepareTexts();
    return MacEventTap::create(mask, [inPool = inPool_, callback = std::move(callback)](const TapEvent& event) {
        TapVerdict verdict;
        inPool([&] { verdict = callback(event); });
        return verdict;
    });
}

std::shared_ptr<TapRunLoopSource> MacEventTaps::createSource(const std::shared_ptr<EventTap>& tap) {
    auto macTap = std::dynamic_pointer_cast<MacEventTap>(tap);
    return macTap != nullptr ? MacTapRunLoopSource::create(std::move(macTap)) : nullptr;
}

std::shared_ptr<TapRunLoop> MacEventTaps::currentRunLoop() {
    return std::make_shared<MacTapRunLoop>(Owned<CFRunLoopRef>::retaining(CFRunLoopGetCurrent()), inPool_);
}

std::unique_ptr<TapThread> MacEventTaps::startThread(std::string_view name, std::function<void()> body) {
    try {
        return std::make_unique<MacTapThread>(std::string(name), std::move(body));
    } catch (const std::system_error& error) {
        log_.write(LogLevel::error, "input", std::string("Cannot start the keyboard's thread: ") + error.what());
        return nullptr;
    }
}

static_assert(EventTaps::keyboardMask ==
              (CGEventMaskBit(kCGEventKeyDown) | CGEventMaskBit(kCGEventKeyUp) | CGEventMaskBit(kCGEventFlagsChanged)));

std::shared_ptr<MacEventTap> MacEventTap::create(std::uint64_t mask, EventTaps::Callback callback) {
    // The tap is its own user pointer, so it exists first.
    std::shared_ptr<MacEventTap> tap(new MacEventTap(std::move(callback)));
    tap->port_ = Owned<CFMachPortRef>(CGEventTapCreate(kCGSessionEventTap, kCGHeadInsertEventTap,
                                                       kCGEventTapOptionDefault, mask, receive, tap.get()));
    if (!tap->port_) {
        return nullptr;
    }
    // The system hands out enabled taps. Until a thread serves this one, every key would wait for its verdict.
    CGEventTapEnable(tap->port_.get(), false);
    return tap;
}

MacEventTap::~MacEventTap() {
    invalidate();
}

void MacEventTap::setEnabled(bool enabled) {
    const std::scoped_lock guard(lock_);
    wantsEnabled_ = enabled;
    if (isValid_ && isServed_) {
        CGEventTapEnable(port_.get(), enabled);
    }
}

void MacEventTap::setServed(bool isServed) {
    const std::scoped_lock guard(lock_);
    isServed_ = isServed;
    if (isValid_ && wantsEnabled_) {
        CGEventTapEnable(port_.get(), isServed);
    }
}

bool MacEventTap::isEnabled() const {
    const std::scoped_lock guard(lock_);
    return isValid_ && (isServed_ ? CGEventTapIsEnabled(port_.get()) : wantsEnabled_);
}

void MacEventTap::invalidate() {
    const std::scoped_lock guard(lock_);
    if (std::exchange(isValid_, false) && port_) {
        CFMachPortInvalidate(port_.get());
    }
}

CGEventRef MacEventTap::receive(CGEventTapProxy /*proxy*/, CGEventType type, CGEventRef event, void* userInfo) {
    const auto* const tap = static_cast<const MacEventTap*>(userInfo);
    if (tap == nullptr) {
        return event;
    }
    const TapVerdict verdict = tap->callback_(MacTapEvent(type, event));
    return verdict.isSwallowed ? nullptr : event;
}

void MacTapRunLoop::runFor(Seconds slice) {
    // The system forgets a stop that comes while the loop is not running.
    if (takeStop()) {
        return;
    }
    CFRunLoopRunResult result = kCFRunLoopRunFinished;
    // What the loop itself leaves behind goes with each slice.
    inPool_([&] { result = CFRunLoopRunInMode(kCFRunLoopDefaultMode, slice.count(), false); });
    if (result == kCFRunLoopRunFinished) {
        // A loop without a source, such as after the tap's port has gone, returns at once, and the thread that runs
        // it again and again would turn as fast as it can.
        std::unique_lock lock(lock_);
        stopped_.wait_for(lock, slice, [this] { return isStopped_; });
    }
    static_cast<void>(takeStop());
}

void MacTapRunLoop::stop() {
    {
        const std::scoped_lock lock(lock_);
        isStopped_ = true;
    }
    stopped_.notify_all();
    CFRunLoopStop(loop_.get());
}

bool MacTapRunLoop::takeStop() {
    const std::scoped_lock lock(lock_);
    return std::exchange(isStopped_, false);
}

std::shared_ptr<MacTapRunLoopSource> MacTapRunLoopSource::create(std::shared_ptr<MacEventTap> tap) {
    Owned<CFRunLoopSourceRef> source(CFMachPortCreateRunLoopSource(kCFAllocatorDefault, tap->port(), 0));
    if (!source) {
        return nullptr;
    }
    return std::shared_ptr<MacTapRunLoopSource>(new MacTapRunLoopSource(std::move(tap), std::move(source)));
}

void MacTapRunLoopSource::addTo(TapRunLoop& loop) {
    CFRunLoopAddSource(dynamic_cast<MacTapRunLoop&>(loop).loop(), source_.get(), kCFRunLoopCommonModes);
    tap_->setServed(true);
}

void MacTapRunLoopSource::removeFrom(TapRunLoop& loop) {
    tap_->setServed(false);
    CFRunLoopRemoveSource(dynamic_cast<MacTapRunLoop&>(loop).loop(), source_.get(), kCFRunLoopCommonModes);
}

MacTapThread::MacTapThread(std::string name, std::function<void()> body)
    : thread_([name = std::move(name), body = std::move(body)] {
          // Without its name or its class of service the thread does the same, only worse.
          static_cast<void>(pthread_setname_np(name.c_str()));
          static_cast<void>(pthread_set_qos_class_self_np(QOS_CLASS_USER_INTERACTIVE, 0));
          body();
      }) {}

MacTapThread::~MacTapThread() {
    thread_.join();
}

}  // namespace ferrowyn

#include "platform/x11/keyboard/x11_event_tap.h"

#include <pthread.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <system_error>
#include <utility>

#include "platform/log.h"
#include "platform/x11/x11_connection.h"

namespace ferrowyn {

X11EventTap::X11EventTap(std::unique_ptr<X11TapEngine> engine, SwitcherModifier trigger, MakeEngine makeEngine)
    : trigger_(trigger), makeEngine_(std::move(makeEngine)) {
    adopt(std::move(engine));
}

void X11EventTap::adopt(std::unique_ptr<X11TapEngine> engine) {
    engine_ = std::move(engine);
    engine_->onLoss = [this] { isEnabled_.store(false); };
}

X11EventTap::~X11EventTap() {
    invalidate();
}

void X11EventTap::setEnabled(bool enabled) {
    {
        const std::scoped_lock guard(engineLock_);
        isEnabled_.store(enabled && engine_ != nullptr && isConnected_);
    }
    post({.kind = enabled ? X11TapRequest::Kind::enable : X11TapRequest::Kind::disable});
}

void X11EventTap::post(const X11TapRequest& request) {
    mailbox_.post(request);
    if (servingThread_.load() == std::this_thread::get_id() && !isServing_) {
        serve();
    }
}

void X11EventTap::noteServingThread() {
    servingThread_.store(std::this_thread::get_id());
}

void X11EventTap::invalidate() {
    const std::scoped_lock guard(engineLock_);
    isEnabled_.store(false);
    engine_.reset();
    // The loop may be waiting on the connection that is gone now.
    mailbox_.wake();
}

void X11EventTap::setTrigger(SwitcherModifier modifier) {
    post({.kind = X11TapRequest::Kind::setTrigger, .trigger = modifier});
}

void X11EventTap::openSession(TapSession session) {
    post({.kind = X11TapRequest::Kind::openSession, .session = session});
}

void X11EventTap::closeSession(TapSession session) {
    post({.kind = X11TapRequest::Kind::closeSession, .session = session});
}

void X11EventTap::noteKeyboardUnavailable() {
    post({.kind = X11TapRequest::Kind::keyboardUnavailable});
}

void X11EventTap::probeKeyboard() {
    post({.kind = X11TapRequest::Kind::probeKeyboard});
}

int X11EventTap::connectionDescriptor() const {
    const std::scoped_lock guard(engineLock_);
    return engine_ != nullptr && isConnected_ ? engine_->connection().fileDescriptor() : -1;
}

pollfd X11EventTap::inputMethodDescriptor() const {
    const std::scoped_lock guard(engineLock_);
    const auto* const method = engine_ != nullptr && isConnected_ ? engine_->inputMethod() : nullptr;
    return method != nullptr ? pollfd{method->descriptor(), method->pollEvents(), 0} : pollfd{-1, 0, 0};
}

int X11EventTap::guardDescriptor() const {
    const std::scoped_lock guard(engineLock_);
    return engine_ != nullptr && isConnected_ ? engine_->guardDescriptor() : -1;
}

std::optional<X11TapEngine::Clock::time_point> X11EventTap::deadline() const {
    const std::scoped_lock guard(engineLock_);
    return engine_ != nullptr && isConnected_ ? engine_->deadline() : std::nullopt;
}

void X11EventTap::serve() {
    mailbox_.acknowledge();
    const std::scoped_lock guard(engineLock_);
    isServing_ = true;
    while (const auto request = mailbox_.take()) {
        handle(*request);
    }
    if (engine_ != nullptr && isConnected_ && !engine_->serve()) {
        replaceEngine();
    }
    isServing_ = false;
}

void X11EventTap::handle(const X11TapRequest& request) {
    using Kind = X11TapRequest::Kind;
    if (request.kind == Kind::setTrigger) {
        // Also while there is no connection, for the next one.
        trigger_ = request.trigger;
    }
    if (engine_ != nullptr && !isConnected_ && request.kind == Kind::enable) {
        connectAgain();
    }
    if (engine_ == nullptr || !isConnected_) {
        return;
    }
    if (request.kind == Kind::disable) {
        isEnabled_.store(false);
    } else if (request.kind == Kind::enable) {
        // Whoever asked has said so already, but the keyboard may have become unavailable just before.
        isEnabled_.store(true);
    }
    engine_->handle(request);
}

/// The guard ends the connection of a tap that was stopped; the tap's owner enables the new one. Where there is no new
/// one, the server is gone or serves as many clients as it can: the next request to enable the tap tries again.
void X11EventTap::replaceEngine() {
    isEnabled_.store(false);
    // A dead descriptor is always readable and must not be waited on.
    isConnected_ = false;
    connectAgain();
    if (isConnected_) {
        engine_->reportLoss();
    } else {
        engine_->reportEnd();
    }
}

void X11EventTap::connectAgain() {
    if (auto engine = makeEngine_(trigger_)) {
        adopt(std::move(engine));
        isConnected_ = true;
    }
}

namespace {

using Clock = X11TapEngine::Clock;

/// Until the moment, rounded up, so that nothing is looked at a little too early again and again.
int pollTimeout(Clock::time_point end) {
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(end - Clock::now()).count();
    return left > 0 ? static_cast<int>(left) : 0;
}

Clock::time_point earliestDeadline(const std::vector<std::shared_ptr<X11EventTap>>& taps, Clock::time_point end) {
    for (const auto& tap : taps) {
        if (const auto deadline = tap->deadline()) {
            end = std::min(end, *deadline);
        }
    }
    return end;
}

}  // namespace

void X11TapRunLoop::runFor(Seconds slice) {
    const auto end = Clock::now() + std::chrono::duration_cast<Clock::duration>(slice);
    do {
        {
            const std::scoped_lock guard(lock_);
            if (isStopped_) {
                isStopped_ = false;
                return;
            }
        }
        const auto served = taps();
        std::vector<pollfd> descriptors{{bell_.fileDescriptor(), POLLIN, 0}};
        for (const auto& tap : served) {
            tap->serve();
            descriptors.push_back({tap->mailboxDescriptor(), POLLIN, 0});
            descriptors.push_back({tap->connectionDescriptor(), POLLIN, 0});
            descriptors.push_back(tap->inputMethodDescriptor());
            descriptors.push_back({tap->guardDescriptor(), POLLIN, 0});
        }
        // An interrupted wait is a short one; every pass looks at everything.
        poll(descriptors.data(), descriptors.size(), pollTimeout(earliestDeadline(served, end)));
        bell_.acknowledge();
    } while (Clock::now() < end);
}

void X11TapRunLoop::stop() {
    {
        const std::scoped_lock guard(lock_);
        isStopped_ = true;
    }
    bell_.wake();
}

void X11TapRunLoop::add(const std::shared_ptr<X11EventTap>& tap) {
    {
        const std::scoped_lock guard(lock_);
        taps_.push_back(tap);
    }
    bell_.wake();
}

void X11TapRunLoop::remove(const std::shared_ptr<X11EventTap>& tap) {
    {
        const std::scoped_lock guard(lock_);
        std::erase(taps_, tap);
    }
    bell_.wake();
}

std::vector<std::shared_ptr<X11EventTap>> X11TapRunLoop::taps() const {
    const std::scoped_lock guard(lock_);
    return taps_;
}

void X11TapRunLoopSource::addTo(TapRunLoop& loop) {
    tap_->noteServingThread();
    dynamic_cast<X11TapRunLoop&>(loop).add(tap_);
}

void X11TapRunLoopSource::removeFrom(TapRunLoop& loop) {
    dynamic_cast<X11TapRunLoop&>(loop).remove(tap_);
}

namespace {

/// What the kernel keeps of a thread's name, its end not counted.
constexpr std::size_t maximumNameLength = 15;
constexpr int highestNiceness = -20;

/// The end tells threads apart, not the reversed domain in front of it.
std::string shortName(const std::string& name) {
    return name.size() <= maximumNameLength ? name : name.substr(name.size() - maximumNameLength);
}

/// A key must not wait behind whatever the machine is busy with. The kernel clamps to what the user's limits allow;
/// most users are allowed nothing, and then the thread runs like any other.
void raisePriority() {
    const auto thread = static_cast<id_t>(syscall(SYS_gettid));
    for (int niceness = highestNiceness; niceness < 0; ++niceness) {
        if (setpriority(PRIO_PROCESS, thread, niceness) == 0) {
            return;
        }
    }
}

}  // namespace

X11TapThread::X11TapThread(const std::string& name, std::function<void()> body)
    : thread_([name = shortName(name), body = std::move(body)] {
          pthread_setname_np(pthread_self(), name.c_str());
          raisePriority();
          body();
      }) {}

X11TapThread::~X11TapThread() {
    thread_.join();
}

namespace {

std::unique_ptr<X11TapEngine> makeTapEngine(const std::string& display, SwitcherModifier trigger,
                                            const EventTaps::Callback& callback, X11InputContext& context, Log& log) {
    auto connection = X11Connection::open(display.empty() ? nullptr : display.c_str());
    if (connection == nullptr) {
        log.write(LogLevel::error, "input", "No connection to the X server for the keyboard");
        return nullptr;
    }
    auto guard = X11KeyboardGuard::start(*connection, display, log);
    return X11TapEngine::create(std::move(connection), std::move(guard), trigger, callback, context, log);
}

}  // namespace

X11EventTaps::X11EventTaps(X11InputContext& context, Log& log, std::string display)
    : context_(context), log_(log), display_(std::move(display)) {
    context_.requestKeyboardProbe = [this] {
        if (const auto tap = currentTap()) {
            tap->probeKeyboard();
        }
    };
}

X11EventTaps::~X11EventTaps() {
    context_.requestKeyboardProbe = nullptr;
}

std::shared_ptr<EventTap> X11EventTaps::create(std::uint64_t mask, SwitcherModifier trigger, Callback callback) {
    if (mask != keyboardMask) {
        return nullptr;
    }
    const auto makeEngine = [&context = context_, &log = log_, display = display_,
                             callback = std::move(callback)](SwitcherModifier modifier) {
        return makeTapEngine(display, modifier, callback, context, log);
    };
    auto engine = makeEngine(trigger);
    if (engine == nullptr) {
        return nullptr;
    }
    auto tap = std::make_shared<X11EventTap>(std::move(engine), trigger, makeEngine);
    const std::scoped_lock guard(lock_);
    currentTap_ = tap;
    return tap;
}

std::shared_ptr<TapRunLoopSource> X11EventTaps::createSource(const std::shared_ptr<EventTap>& tap) {
    auto x11Tap = std::dynamic_pointer_cast<X11EventTap>(tap);
    return x11Tap != nullptr ? std::make_shared<X11TapRunLoopSource>(std::move(x11Tap)) : nullptr;
}

std::shared_ptr<TapRunLoop> X11EventTaps::currentRunLoop() {
    thread_local const auto loop = std::make_shared<X11TapRunLoop>();
    return loop;
}

std::unique_ptr<TapThread> X11EventTaps::startThread(std::string_view name, std::function<void()> body) {
    try {
        return std::make_unique<X11TapThread>(std::string(name), std::move(body));
    } catch (const std::system_error& error) {
        log_.write(LogLevel::error, "input", std::string("Cannot start the keyboard's thread: ") + error.what());
        return nullptr;
    }
}

void X11EventTaps::notifyKeyboardUnavailable() {
    if (const auto tap = currentTap()) {
        tap->noteKeyboardUnavailable();
    }
}

std::shared_ptr<X11EventTap> X11EventTaps::currentTap() const {
    const std::scoped_lock guard(lock_);
    return currentTap_.lock();
}

}  // namespace ferrowyn

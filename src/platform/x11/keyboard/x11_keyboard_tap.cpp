#include "platform/x11/keyboard/x11_keyboard_tap.h"

#include <poll.h>
#include <pthread.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <system_error>
#include <utility>

#include "platform/log.h"
#include "platform/x11/x11_connection.h"

namespace ferrowyn {

namespace {

/// What the kernel keeps of a thread's name, its end not counted.
constexpr std::size_t maximumNameLength = 15;
constexpr int highestNiceness = -20;

/// The end tells threads apart, not the reversed domain in front of it.
void nameThread(std::string_view name) {
    const auto length = std::min(name.size(), maximumNameLength);
    pthread_setname_np(pthread_self(), std::string(name.substr(name.size() - length)).c_str());
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

/// Until the moment, rounded up, so that nothing is looked at a little too early again and again. For ever without one.
int pollTimeout(std::optional<X11TapEngine::Clock::time_point> end) {
    if (!end) {
        return -1;
    }
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(*end - X11TapEngine::Clock::now()).count();
    return left > 0 ? static_cast<int>(left) : 0;
}

}  // namespace

X11KeyboardTap::Creation X11KeyboardTap::start(MakeEngine makeEngine, SwitcherModifier trigger, Log& log) {
    auto created = makeEngine(trigger);
    if (created.engine == nullptr) {
        return {nullptr, std::move(created.refusal)};
    }
    std::unique_ptr<X11KeyboardTap> tap(
        new X11KeyboardTap(std::move(created.engine), std::move(makeEngine), trigger, log));
    if (tap->commands_.fileDescriptor() < 0) {
        return {nullptr, "No event descriptor for the keyboard's thread"};
    }
    if (!tap->startThread()) {
        return {nullptr, std::string(KeyboardTaps::threadRefusal)};
    }
    return {std::move(tap), {}};
}

X11KeyboardTap::X11KeyboardTap(std::unique_ptr<X11TapEngine> engine, MakeEngine makeEngine, SwitcherModifier trigger,
                               Log& log)
    : log_(log), makeEngine_(std::move(makeEngine)), trigger_(trigger) {
    adopt(std::move(engine));
}

X11KeyboardTap::~X11KeyboardTap() {
    onRemoval();
    if (thread_.joinable()) {
        commands_.post([this] { isEnding_ = true; });
        thread_.join();
    }
}

bool X11KeyboardTap::startThread() {
    const auto served = served_.get_future();
    try {
        thread_ = std::thread([this] { run(); });
    } catch (const std::system_error&) {
        return false;
    }
    static_cast<void>(served.wait_for(KeyboardTaps::threadStartTimeout));
    return true;
}

void X11KeyboardTap::setEnabled(bool enabled) {
    isRequested_.store(enabled);
    if (enabled) {
        isLost_.store(!isConnected_.load());
        commands_.post([this] { enable(); });
    } else {
        post([](X11TapEngine& engine) { engine.setEnabled(false); });
    }
}

void X11KeyboardTap::setTrigger(SwitcherModifier modifier) {
    commands_.post([this, modifier] {
        // Also while there is no connection, for the next one.
        trigger_ = modifier;
        if (isConnected_.load()) {
            engine_->setTrigger(modifier);
        }
    });
}

void X11KeyboardTap::openSession(TapSession session) {
    post([this, session](X11TapEngine& engine) {
        // Checked here because this thread gives requests up: the main thread may have begun to open it in time.
        if (hasGivenUp(session)) {
            engine.reportLateSession();
        } else {
            engine.openSession(session);
        }
    });
}

void X11KeyboardTap::closeSession(TapSession session) {
    commands_.post([this, session] {
        if (isConnected_.load()) {
            engine_->closeSession(session);
        }
        // Here because this thread may give the request up before it hears of the end.
        const std::scoped_lock guard(givenUpLock_);
        givenUp_.erase(session);
    });
}

bool X11KeyboardTap::hasGivenUp(TapSession session) const {
    const std::scoped_lock guard(givenUpLock_);
    return givenUp_.contains(session);
}

void X11KeyboardTap::post(std::function<void(X11TapEngine&)> command) {
    commands_.post([this, command = std::move(command)] {
        if (isConnected_.load()) {
            command(*engine_);
        }
    });
}

void X11KeyboardTap::run() {
    nameThread(KeyboardTaps::threadName);
    raisePriority();
    if (isEnabled()) {
        engine_->setEnabled(true);
    }
    served_.set_value();
    for (commands_.run(); !isEnding_; commands_.run()) {
        if (isConnected_.load() && !engine_->serve()) {
            replaceEngine();
        }
        waitForEvents();
    }
    if (isConnected_.load()) {
        engine_->setEnabled(false);
    }
    engine_.reset();
}

void X11KeyboardTap::waitForEvents() const {
    std::array<pollfd, 4> descriptors{{{commands_.fileDescriptor(), POLLIN, 0}, {-1, 0, 0}, {-1, 0, 0}, {-1, 0, 0}}};
    std::optional<X11TapEngine::Clock::time_point> deadline;
    // A dead connection is always readable and must not be waited on.
    if (isConnected_.load()) {
        descriptors[1] = {engine_->connection().fileDescriptor(), POLLIN, 0};
        if (const auto* const method = engine_->inputMethod()) {
            descriptors[2] = {method->descriptor(), method->pollEvents(), 0};
        }
        descriptors[3] = {engine_->guardDescriptor(), POLLIN, 0};
        deadline = engine_->deadline();
    }
    // An interrupted wait is a short one; every pass looks at everything.
    poll(descriptors.data(), descriptors.size(), pollTimeout(deadline));
}

void X11KeyboardTap::enable() {
    if (!isConnected_.load()) {
        connectAgain();
    }
    // The caller of `setEnabled` has noted this already, but the tap may have been disabled or disconnected since.
    isLost_.store(!isConnected_.load());
    if (isConnected_.load()) {
        engine_->setEnabled(true);
    }
}

void X11KeyboardTap::adopt(std::unique_ptr<X11TapEngine> engine) {
    engine_ = std::move(engine);
    engine_->onLoss = [this] { isLost_.store(true); };
    engine_->onRequestGivenUp = [this](TapSession session) {
        const std::scoped_lock guard(givenUpLock_);
        givenUp_.insert(session);
    };
}

/// The guard ends the connection of a tap that was stopped; the tap's owner enables the new one. Where there is no new
/// one, the server is gone or serves as many clients as it can: the next request to enable the tap tries again.
void X11KeyboardTap::replaceEngine() {
    isConnected_.store(false);
    isLost_.store(true);
    engine_->giveRequestUp();
    connectAgain();
    if (isConnected_.load()) {
        engine_->reportLoss();
    } else {
        engine_->reportEnd();
    }
}

void X11KeyboardTap::connectAgain() {
    auto created = makeEngine_(trigger_);
    if (created.engine == nullptr) {
        log_.write(LogLevel::error, "input", created.refusal);
        return;
    }
    adopt(std::move(created.engine));
    isConnected_.store(true);
}

namespace {

X11TapEngine::Creation makeTapEngine(const std::string& display, SwitcherModifier trigger, const TapCallback& callback,
                                     X11InputContext& context, Log& log) {
    auto connection = X11Connection::open(display.empty() ? nullptr : display.c_str());
    if (connection == nullptr) {
        return {nullptr, "No connection to the X server for the keyboard"};
    }
    auto guard = X11KeyboardGuard::start(*connection, display, log);
    return X11TapEngine::create(std::move(connection), std::move(guard), trigger, callback, context, log);
}

}  // namespace

X11KeyboardTaps::X11KeyboardTaps(X11InputContext& context, Log& log, std::string display)
    : context_(context), log_(log), display_(std::move(display)) {
    context_.requestKeyboardProbe = [this] { post([](X11TapEngine& engine) { engine.probeKeyboard(); }); };
}

X11KeyboardTaps::~X11KeyboardTaps() {
    context_.requestKeyboardProbe = nullptr;
}

KeyboardTaps::Start X11KeyboardTaps::start(SwitcherModifier trigger, TapCallback callback) {
    auto created = X11KeyboardTap::start(
        [&context = context_, &log = log_, display = display_, callback = std::move(callback)](
            SwitcherModifier modifier) { return makeTapEngine(display, modifier, callback, context, log); },
        trigger, log_);
    if (created.tap == nullptr) {
        return {nullptr, std::move(created.refusal)};
    }
    created.tap->onRemoval = [this, removed = created.tap.get()] {
        const std::scoped_lock guard(lock_);
        if (currentTap_ == removed) {
            currentTap_ = nullptr;
        }
    };
    const std::scoped_lock guard(lock_);
    currentTap_ = created.tap.get();
    return {std::move(created.tap), {}};
}

void X11KeyboardTaps::notifyKeyboardUnavailable() {
    post([](X11TapEngine& engine) { engine.loseKeyboard(); });
}

void X11KeyboardTaps::post(std::function<void(X11TapEngine&)> command) {
    const std::scoped_lock guard(lock_);
    if (currentTap_ != nullptr) {
        currentTap_->post(std::move(command));
    }
}

}  // namespace ferrowyn

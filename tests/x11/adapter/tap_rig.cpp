#include "tests/x11/adapter/tap_rig.h"

#include <pthread.h>
#include <time.h>

#include <iostream>
#include <stdexcept>
#include <utility>

#include "platform/x11/xcb_reply.h"

namespace ferrowyn::x11test {

namespace {

constexpr std::uint16_t tabKey = 48, graveKey = 50, escapeKey = 53;
constexpr std::uint64_t hidingFlags = event_flags::control | event_flags::option | event_flags::command;

}  // namespace

void TapRig::QuietLog::write(LogLevel level, std::string_view category, std::string_view message) {
    if (level >= LogLevel::standard) {
        std::cerr << category << ": " << message << '\n';
    }
}

TapRig::TapRig(const std::string& display, const Options& options)
    : options_(options),
      taps_(context_, log_, display),
      observer_(X11Connection::open(display.c_str())),
      random_(options.seed) {
    auto started = taps_.start(options.trigger, [this](const TapEvent& event) { return handle(event); });
    if (started.tap == nullptr) {
        throw std::runtime_error(started.refusal);
    }
    tap_ = std::move(started.tap);
    tap().post([this](X11TapEngine&) { tapThreadHandle_ = pthread_self(); });
    mainThread_ = std::thread([this] { runMain(); });
    if (!waitForTapThread()) {
        throw std::runtime_error("the tap's thread does not run");
    }
}

TapRig::~TapRig() {
    {
        const std::scoped_lock guard(lock_);
        isEnding_ = true;
    }
    changed_.notify_all();
    mainThread_.join();
    tap_.reset();
}

TapVerdict TapRig::handle(const TapEvent& event) {
    const bool wasVisible = isVisible_;
    switch (event.type()) {
        case TapEvent::Type::keyDown:
            return handleKeyDown(event, wasVisible);
        case TapEvent::Type::flagsChanged:
            record(event, {}, wasVisible);
            if (wasVisible && isHoldModeActive_ && (event.flags() & flagMask(options_.trigger)) == 0) {
                post({Command::Kind::modifierReleased, {}});
                return {.mayEndSession = true};
            }
            return {};
        case TapEvent::Type::keyUp:
        case TapEvent::Type::disabledByTimeout:
        case TapEvent::Type::disabledByUserInput:
            record(event, {}, wasVisible);
            return {.isSwallowed = wasVisible};
    }
    return {};
}

TapVerdict TapRig::handleKeyDown(const TapEvent& event, bool wasVisible) {
    const bool isHeld = (event.flags() & flagMask(options_.trigger)) != 0;
    const bool isTriggerKey =
        event.keyCode() == tabKey || (event.keyCode() == graveKey && options_.trigger == SwitcherModifier::command);
    if (isHeld && isTriggerKey) {
        if (onTrigger) {
            onTrigger();
        }
        record(event, {}, wasVisible);
        if (wasVisible) {
            post({Command::Kind::invoke, {}});
            return {.isSwallowed = true};
        }
        ++requests_;
        const auto requested = nextSession();
        post({Command::Kind::invoke, requested});
        return {.isSwallowed = true, .requestedSession = requested};
    }
    if (!wasVisible) {
        record(event, {}, wasVisible);
        return {};
    }
    const bool isReduced = (event.flags() & hidingFlags) != 0;
    record(event, event.text(isReduced ? std::optional(event.flags() & event_flags::shift) : std::nullopt), wasVisible);
    if (event.keyCode() == escapeKey) {
        post({Command::Kind::cancel, {}});
    }
    return {.isSwallowed = true};
}

void TapRig::record(const TapEvent& event, const std::u16string& text, bool wasVisible) {
    {
        const std::scoped_lock guard(lock_);
        seen_.push_back({event.type(), event.flags(), event.keyCode(), text, wasVisible});
    }
    changed_.notify_all();
}

void TapRig::post(const Command& command) {
    {
        const std::scoped_lock guard(lock_);
        commands_.push_back(command);
    }
    changed_.notify_all();
}

void TapRig::runMain() {
    while (true) {
        Command command{};
        {
            std::unique_lock guard(lock_);
            changed_.wait(guard, [this] { return isEnding_ || !commands_.empty(); });
            if (isEnding_) {
                return;
            }
            command = commands_.front();
            commands_.pop_front();
            isMainBusy_ = true;
        }
        if (options_.maximumMainDelay.count() > 0) {
            // What is imitated here is a thread that has other things to do, not something to wait for.
            std::uniform_int_distribution<std::int64_t> busy(0, options_.maximumMainDelay.count() * 1000);
            std::this_thread::sleep_for(std::chrono::microseconds(busy(random_)));
        }
        execute(command);
        {
            const std::scoped_lock guard(lock_);
            isMainBusy_ = false;
        }
        changed_.notify_all();
    }
}

void TapRig::execute(const Command& command) {
    switch (command.kind) {
        case Command::Kind::invoke:
            if (isVisible_) {
                ++moves_;
            } else if (options_.opensSessions && options_.answers) {
                open(command.request.value_or(nextSession()), options_.holdMode);
                break;
            }
            if (command.request && options_.answers) {
                tap_->closeSession(*command.request);
            }
            break;
        case Command::Kind::openFromMenu:
            open(nextSession(), false);
            break;
        case Command::Kind::modifierReleased:
        case Command::Kind::cancel:
        case Command::Kind::close:
            if (isVisible_) {
                isHoldModeActive_ = false;
                isVisible_ = false;
                tap_->closeSession(*session_);
                ++closed_;
            }
            break;
    }
}

void TapRig::open(TapSession session, bool isHoldModeActive) {
    ++opened_;
    session_ = session;
    isHoldModeActive_ = isHoldModeActive;
    isVisible_ = true;
    tap_->openSession(session);
}

void TapRig::openFromMenu() {
    post({Command::Kind::openFromMenu, {}});
}

void TapRig::close() {
    post({Command::Kind::close, {}});
}

bool TapRig::waitUntil(const std::function<bool()>& predicate, milliseconds budget) {
    std::unique_lock guard(lock_);
    return changed_.wait_for(guard, budget, predicate);
}

bool TapRig::waitForOpened(int count) {
    return waitUntil([&] { return opened_ >= count; });
}

bool TapRig::waitForClosed(int count) {
    return waitUntil([&] { return closed_ >= count; });
}

std::vector<TapRig::Seen> TapRig::seen() const {
    const std::scoped_lock guard(lock_);
    return seen_;
}

void TapRig::forgetSeen() {
    const std::scoped_lock guard(lock_);
    seen_.clear();
}

std::u16string TapRig::typedWhileWaiting() const {
    std::u16string all;
    for (const auto& event : seen_) {
        all += event.text;
    }
    return all;
}

bool TapRig::waitForOpenedWithin(int count, milliseconds budget) {
    return waitUntil([&] { return opened_ >= count; }, budget);
}

bool TapRig::settle() {
    // The server serves its clients in turn: after two round trips of one, all that others had sent before is done. A
    // pass can make the tap ask something, and what came with the answer is for the next.
    for (int pass = 0; pass < 3; ++pass) {
        for (int trip = 0; trip < 2; ++trip) {
            const XcbReply<xcb_get_input_focus_reply_t> reply(
                xcb_get_input_focus_reply(observer_->get(), xcb_get_input_focus(observer_->get()), nullptr));
        }
        // Between the two, it has handled what the server had for it.
        if (!waitForTapThread() || !waitForTapThread() ||
            !waitUntil([&] { return commands_.empty() && !isMainBusy_; })) {
            return false;
        }
    }
    return true;
}

bool TapRig::waitForTapThread() {
    int before = 0;
    {
        const std::scoped_lock guard(lock_);
        before = laps_;
    }
    tap().post([this](X11TapEngine&) {
        {
            const std::scoped_lock guard(lock_);
            ++laps_;
        }
        changed_.notify_all();
    });
    return waitUntil([&] { return laps_ > before; });
}

std::chrono::nanoseconds TapRig::tapThreadCpuTime() const {
    clockid_t clock{};
    timespec time{};
    pthread_getcpuclockid(tapThreadHandle_, &clock);
    clock_gettime(clock, &time);
    return std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec);
}

}  // namespace ferrowyn::x11test

#include "input/hot_key_monitor.h"

#include <fmt/format.h>

#include <algorithm>
#include <cassert>
#include <cmath>
#include <utility>
#include <variant>

#include "input/key_classifier.h"
#include "platform/log.h"
#include "platform/platform.h"
#include "platform/trust.h"

namespace ferrowyn {

namespace {

constexpr std::string_view category = "input";
constexpr Seconds healthInterval{3.0};
/// A tap that stayed enabled for longer than this has recovered: the next timeout is the first of a new row.
constexpr Seconds quietPeriod{30.0};
constexpr Seconds firstRetryDelay{0.25};

SwitcherModifier modifierWithMask(std::uint64_t mask) {
    const auto* const found = std::find_if(allSwitcherModifiers.begin(), allSwitcherModifiers.end(),
                                           [mask](SwitcherModifier modifier) { return flagMask(modifier) == mask; });
    return found == allSwitcherModifiers.end() ? SwitcherModifier::command : *found;
}

}  // namespace

HotKeyMonitor::HotKeyMonitor(const Platform& platform, SwitcherModifier modifier)
    : mainLoop_(platform.mainLoop), log_(platform.log), trust_(platform.trust), keyboardTaps_(platform.keyboardTaps) {
    state_->setModifier(modifier);
}

HotKeyMonitor::~HotKeyMonitor() {
    assert(mainLoop_.isMainThread());
    removeTap();
}

bool HotKeyMonitor::start() {
    assert(mainLoop_.isMainThread());
    if (isRunning_.get()) {
        return true;
    }
    if (!trust_.isTrusted()) {
        log_.write(LogLevel::error, category, "Cannot install event tap without Accessibility trust");
        return false;
    }
    period_.emplace();
    auto started = keyboardTaps_.start(modifierWithMask(state_->snapshot().modifierFlag), makeTapCallback());
    if (started.tap == nullptr) {
        period_.reset();
        log_.write(LogLevel::error, category, started.refusal);
        return false;
    }
    tap_ = std::move(started.tap);
    consecutiveDisables_ = 0;
    lastDisableTime_.reset();
    state_->setTapPort(tap_.get());
    // A session can be open already: the menu opens one without the keyboard.
    state_->tellTapOfSession();
    startHealthTimer();
    isRunning_.set(true);
    log_.write(LogLevel::standard, category, "Event tap installed");
    return true;
}

void HotKeyMonitor::stop() {
    assert(mainLoop_.isMainThread());
    if (!isRunning_.get()) {
        return;
    }
    isRunning_.set(false);
    removeTap();
    log_.write(LogLevel::standard, category, "Event tap removed");
}

void HotKeyMonitor::removeTap() {
    period_.reset();
    healthTimer_.reset();
    for (auto& retry : retries_) {
        retry.reset();
    }
    // While the tap is still known: it is told that the session is closed before it goes.
    state_->closeSession();
    state_->setTapPort(nullptr);
    tap_.reset();
}

void HotKeyMonitor::startHealthTimer() {
    healthTimer_ = mainLoop_.every(healthInterval, [this] { checkHealth(); });
}

void HotKeyMonitor::checkHealth() {
    assert(mainLoop_.isMainThread());
    if (tap_ == nullptr || !isRunning_.get()) {
        return;
    }
    if (!trust_.isTrusted()) {
        log_.write(LogLevel::standard, category, "Accessibility trust lost; stopping the event tap");
        stopAndFail(Failure::trustRevoked);
    } else if (!tap_->isEnabled()) {
        reenable("periodic check");
    } else if (!lastDisableTime_ || mainLoop_.now() - *lastDisableTime_ > quietPeriod) {
        consecutiveDisables_ = 0;
    }
}

void HotKeyMonitor::reenable(std::string_view reason) {
    if (!isRunning_.get() || tap_ == nullptr || !trust_.isTrusted() || tap_->isEnabled()) {
        return;
    }
    log_.write(LogLevel::standard, category, fmt::format("Re-enabling event tap ({})", reason));
    tap_->setEnabled(true);
}

TapCallback HotKeyMonitor::makeTapCallback() {
    const auto deliver = period_->guard(
        [this](const SwitcherCommand& command, std::optional<TapSession> request) { this->deliver(command, request); });
    const auto handleDisabled = period_->guard([this](bool byTimeout) { handleTapDisabled(byTimeout); });
    return [state = state_, &mainLoop = mainLoop_, period = period_->watch(), deliver,
            handleDisabled](const TapEvent& event) {
        if (!period.isAlive()) {
            return TapVerdict{};
        }
        const auto type = event.type();
        if (type == TapEvent::Type::disabledByTimeout || type == TapEvent::Type::disabledByUserInput) {
            state->noteTapDisabled();
            mainLoop.post(
                [handleDisabled, byTimeout = type == TapEvent::Type::disabledByTimeout] { handleDisabled(byTimeout); });
            return TapVerdict{};
        }
        const auto snapshot = state->snapshot();
        auto decision = classify(event, snapshot);
        TapVerdict verdict{.isSwallowed = decision.kind == KeyDecision::Kind::swallow};
        if (decision.command) {
            if (!snapshot.isSwitcherVisible && std::holds_alternative<command::Invoke>(*decision.command)) {
                verdict.requestedSession = state->requestSession();
            }
            verdict.mayEndSession = std::holds_alternative<command::ModifierReleased>(*decision.command);
            mainLoop.post([deliver, command = std::move(*decision.command), request = verdict.requestedSession] {
                deliver(command, request);
            });
        }
        return verdict;
    };
}

void HotKeyMonitor::deliver(const SwitcherCommand& command, std::optional<TapSession> request) {
    assert(mainLoop_.isMainThread());
    // The owner may stop or even destroy the monitor while it handles the command.
    const auto state = state_;
    if (request && !state->beginRequest(*request)) {
        // The user has gone on without a panel; one that opens now has neither the keys nor the moment.
        log_.write(LogLevel::standard, category, "The trigger was handled too late; no session is opened for it");
        return;
    }
    if (const auto callback = onCommand) {
        callback(command);
    }
    if (request) {
        state->endRequest();
    }
    if (std::holds_alternative<command::ModifierReleased>(command)) {
        // A session that goes on all the same: the tap holds the next trigger back until it knows.
        state->tellTapOfSession();
    }
}

void HotKeyMonitor::handleTapDisabled(bool byTimeout) {
    assert(mainLoop_.isMainThread());
    if (!isRunning_.get()) {
        return;
    }
    state_->setReenableRequested(false);
    const auto period = period_->watch();
    if (const auto callback = onTapDisabled) {
        callback();
    }
    if (!period.isAlive()) {
        return;
    }
    state_->closeSession();
    if (byTimeout) {
        handleTimeout();
    } else {
        reenable("user-input transition");
    }
}

void HotKeyMonitor::handleTimeout() {
    ++consecutiveDisables_;
    lastDisableTime_ = mainLoop_.now();
    if (consecutiveDisables_ > maximumRetries) {
        log_.write(LogLevel::error, category,
                   "Event tap timed out repeatedly; abandoning it to keep the keyboard usable");
        stopAndFail(Failure::repeatedTimeouts);
        return;
    }
    const Seconds delay = firstRetryDelay * std::exp2(consecutiveDisables_ - 1);
    log_.write(LogLevel::standard, category,
               fmt::format("Event tap timed out ({}); retrying in {:f}s", consecutiveDisables_, delay.count()));
    retries_.at(static_cast<std::size_t>(consecutiveDisables_ - 1)) =
        mainLoop_.after(delay, [this] { reenable("timeout backoff"); });
}

void HotKeyMonitor::stopAndFail(Failure failure) {
    stop();
    // A copy: the owner may answer by destroying the monitor.
    if (const auto callback = onTapFailed) {
        callback(failure);
    }
}

}  // namespace ferrowyn

#include "input/window_activator.h"

#include <fmt/format.h>

#include <cassert>
#include <string_view>
#include <utility>

#include "platform/log.h"
#include "platform/platform.h"
#include "platform/window_control.h"
#include "platform/workspace.h"

namespace ferrowyn {

namespace {

constexpr std::string_view category = "activation";
constexpr Seconds lookupPause{0.12};
constexpr int maximumLookups = 5;
constexpr double delayGrowth = 1.8;

}  // namespace

WindowActivator::WindowActivator(const Platform& platform)
    : mainLoop_(platform.mainLoop),
      log_(platform.log),
      workspace_(platform.workspace),
      control_(platform.windowControl) {}

void WindowActivator::activate(const AppWindow& window) {
    assert(mainLoop_.isMainThread());
    pause_.reset();
    activation_.reset();
    mainLoop_.post(posted_.emplace().guard([this, window] {
        posted_.reset();
        begin(window);
    }));
}

void WindowActivator::begin(const AppWindow& window) {
    AppWindow chosen = window;
    if (chosen.blockedBy && !workspace_.runningApplication(chosen.blockedBy->pid)) {
        // Closed since the list was made, and its application with it: nothing blocks the window any more.
        chosen.blockedBy.reset();
    }
    const auto& dialog = chosen.blockedBy;
    const Pid pid = dialog ? dialog->pid : window.pid;
    const auto application = workspace_.runningApplication(pid);
    if (!application || application->isTerminated) {
        log_.write(LogLevel::error, category, fmt::format("pid {} is gone", pid));
        return;
    }
    activation_.emplace(Activation{.window = chosen,
                                   .applicationName = application->localizedName.value_or(window.appName),
                                   .pid = pid,
                                   .element = dialog ? std::optional(dialog->element) : window.axElement});
    if (activation_->element) {
        raiseFirst();
    } else {
        control_.activateApplication(pid);
        lookUpElement();
    }
}

void WindowActivator::lookUpElement() {
    ++activation_->lookups;
    activation_->element = control_.findWindow(activation_->pid, activation_->window.id);
    if (activation_->element) {
        raiseFirst();
    } else if (activation_->lookups < maximumLookups) {
        pause_ = mainLoop_.after(lookupPause, [this] { lookUpElement(); });
    } else {
        log_.write(LogLevel::standard, category,
                   fmt::format("No AX element for window {}; activated its app only", activation_->window.id));
        finish();
    }
}

void WindowActivator::raiseFirst() {
    // Asked only where it can be so: an application that does not answer would delay the request.
    activation_->wasActive = workspace_.frontmostPid() == activation_->pid &&
                             control_.stateOf(activation_->pid, *activation_->element) == ActivationState::active;
    raise();
    scheduleVerification();
}

void WindowActivator::raise() {
    const auto& window = activation_->window;
    control_.raiseAndFocus({.pid = activation_->pid,
                            .window = *activation_->element,
                            .blockedWindow = window.blockedBy ? window.axElement : std::nullopt,
                            .isMinimized = window.isMinimized,
                            .isRetry = activation_->checks > 0});
}

void WindowActivator::scheduleVerification() {
    pause_ = mainLoop_.after(activation_->delay, [this] { verify(); });
}

void WindowActivator::verify() {
    ++activation_->checks;
    const auto state = this->state();
    if (state == ActivationState::active) {
        log_.write(LogLevel::debug, category,
                   fmt::format("Window {} active after {} check(s)", activation_->window.id, activation_->checks));
        reportVerification(true);
        finish();
        return;
    }
    if (state == ActivationState::overtaken) {
        // Raising it again would take the user away from what was chosen later, which leads the order by now.
        log_.write(LogLevel::debug, category,
                   fmt::format("Another window was chosen after window {}", activation_->window.id));
        activation_.reset();
        return;
    }
    if (activation_->checks >= maximumAttempts) {
        log_.write(LogLevel::standard, category,
                   fmt::format("Could not confirm activation of window {} in {}", activation_->window.id,
                               activation_->applicationName));
        // A window that is gone by now or has had the keyboard, or whose application does not answer, says nothing
        // against the desktop.
        if (state == ActivationState::notActive) {
            reportVerification(false);
        }
        finish();
        return;
    }
    // What comes next may be a later choice. If nothing has come by the next check, the window is raised again. So is
    // one whose application does not answer.
    activation_->isLost = state == ActivationState::lost && !activation_->isLost;
    if (!activation_->isLost) {
        raise();
    }
    activation_->delay *= delayGrowth;
    scheduleVerification();
}

ActivationState WindowActivator::state() const {
    const auto state = control_.stateOf(activation_->pid, *activation_->element);
    const auto& window = activation_->window;
    if (state == ActivationState::active || !window.blockedBy || !window.axElement) {
        return state;
    }
    // Once its dialog has been closed, the window gets the keyboard itself.
    const auto own = control_.stateOf(window.pid, *window.axElement);
    return own == ActivationState::active || state == ActivationState::unreadable ? own : state;
}

void WindowActivator::reportVerification(bool isConfirmed) const {
    if (onVerified && !activation_->wasActive) {
        onVerified(isConfirmed, activation_->pid);
    }
}

void WindowActivator::finish() {
    // Idle before the owner hears of it: it may ask for the next activation, or destroy the activator.
    const AppWindow window = std::move(activation_->window);
    activation_.reset();
    pause_.reset();
    if (const auto callback = onActivated) {
        callback(window);
    }
}

}  // namespace ferrowyn

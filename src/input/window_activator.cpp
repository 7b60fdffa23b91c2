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
/// An unresponsive application must not hold up the main thread for long.
constexpr Seconds messagingTimeout{0.5};
constexpr Seconds lookPause{0.12};
constexpr int maximumLooks = 5;
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
    posted_ = std::make_shared<const AppWindow>(window);
    mainLoop_.post([this, posted = std::weak_ptr(posted_)] {
        if (const auto chosen = posted.lock()) {
            posted_.reset();
            begin(*chosen);
        }
    });
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
    control_.setMessagingTimeout(pid, messagingTimeout);
    if (activation_->element) {
        raiseFirst();
    } else {
        control_.activate(pid);
        lookUpElement();
    }
}

void WindowActivator::lookUpElement() {
    ++activation_->looks;
    activation_->element = findElement();
    if (activation_->element) {
        raiseFirst();
    } else if (activation_->looks < maximumLooks) {
        pause_ = mainLoop_.after(lookPause, [this] { lookUpElement(); });
    } else {
        log_.write(LogLevel::standard, category,
                   fmt::format("No AX element for window {}; activated its app only", activation_->window.id));
        finish();
    }
}

std::optional<AXElementRef> WindowActivator::findElement() const {
    for (const auto& element : control_.windowElements(activation_->pid)) {
        if (control_.windowNumber(element) == activation_->window.id) {
            return element;
        }
    }
    return std::nullopt;
}

void WindowActivator::raiseFirst() {
    const auto& window = activation_->window;
    control_.setMessagingTimeout(*activation_->element, messagingTimeout);
    activation_->wasActive =
        control_.isActive(activation_->pid) && control_.isFocused(*activation_->element).value_or(false);
    if (control_.isHidden(activation_->pid)) {
        control_.unhide(activation_->pid);
    }
    if (window.isMinimized) {
        control_.unminimize(window.blockedBy && window.axElement ? *window.axElement : *activation_->element);
    }
    raise();
    scheduleVerification();
}

/// Raised, main and focused inside its application first, so that activating the application brings this window
/// forward and not the application's own idea of its front window; frontmost last.
void WindowActivator::raise() {
    const Pid pid = activation_->pid;
    const auto& element = *activation_->element;
    if (const auto& window = activation_->window; window.blockedBy && window.axElement) {
        // Below its dialog, and where the dialog has just been closed the window gets the keyboard itself.
        control_.raise(*window.axElement);
    }
    control_.raise(element);
    control_.setMain(element);
    control_.setFocused(element);
    control_.setFocusedWindow(pid, element);
    control_.activate(pid);
    control_.setFrontmost(pid);
}

void WindowActivator::scheduleVerification() {
    pause_ = mainLoop_.after(activation_->delay, [this] { verify(); });
}

void WindowActivator::verify() {
    ++activation_->checks;
    if (isConfirmed()) {
        log_.write(LogLevel::debug, category,
                   fmt::format("Window {} active after {} check(s)", activation_->window.id, activation_->checks));
        reportVerification(true);
        finish();
        return;
    }
    if (control_.wasOvertaken(*activation_->element)) {
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
        // A window that is gone by now, or whose application does not answer, says nothing about the desktop.
        if (control_.isFocused(*activation_->element)) {
            reportVerification(false);
        }
        finish();
        return;
    }
    raise();
    activation_->delay *= delayGrowth;
    scheduleVerification();
}

/// What cannot be read does not confirm anything: an application that does not answer is worth another try.
bool WindowActivator::isConfirmed() const {
    const auto hasKeyboard = [this](Pid pid, const std::optional<AXElementRef>& element) {
        return element && control_.isActive(pid) && control_.isMain(*element).value_or(false) &&
               control_.isFocused(*element).value_or(false);
    };
    const auto& window = activation_->window;
    return hasKeyboard(activation_->pid, activation_->element) ||
           (window.blockedBy && hasKeyboard(window.pid, window.axElement));
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

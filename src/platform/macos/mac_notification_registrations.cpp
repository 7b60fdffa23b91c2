#include "platform/macos/mac_notification_registrations.h"

#include <utility>

#include "platform/log.h"
#include "platform/macos/cf_values.h"
#include "platform/macos/mac_attributes.h"

namespace ferrowyn {

MacNotificationRegistrations::MacNotificationRegistrations(Pid pid, AXObserverRef observer, void* refcon,
                                                           MainLoop& mainLoop, Log& log)
    : pid_(pid), observer_(observer), refcon_(refcon), mainLoop_(mainLoop), log_(log) {}

void MacNotificationRegistrations::add(AXUIElementRef element, std::string_view notification) {
    request({Verb::add, Owned<AXUIElementRef>::retaining(element), std::string(notification)});
}

void MacNotificationRegistrations::remove(AXUIElementRef element, std::string_view notification) {
    request({Verb::remove, Owned<AXUIElementRef>::retaining(element), std::string(notification)});
}

void MacNotificationRegistrations::forgetWaiting() {
    retry_.reset();
    waiting_.clear();
}

void MacNotificationRegistrations::request(Request request) {
    if (!hangs_) {
        if (!send(request)) {
            hangs_ = true;
            waiting_.push_back(std::move(request));
            waitFor(firstPause);
        }
        return;
    }
    if (cancelsWaiting(request)) {
        return;
    }
    const bool mayAnswerAgain = request.verb == Verb::add && !retry_;
    waiting_.push_back(std::move(request));
    if (mayAnswerAgain) {
        waitFor(firstPause);
    }
}

bool MacNotificationRegistrations::send(const Request& request) const {
    const auto name = cf::makeString(request.notification);
    if (!name) {
        return true;
    }
    accessibility::setMessagingTimeout(request.element.get(), messagingTimeout);
    const bool isRemoval = request.verb == Verb::remove;
    const AXError error = isRemoval ? AXObserverRemoveNotification(observer_, request.element.get(), name.get())
                                    : AXObserverAddNotification(observer_, request.element.get(), name.get(), refcon_);
    // A window that has gone took its registrations along, and a registration that was not answered in time may have
    // been made all the same.
    const bool isDone = error == kAXErrorSuccess ||
                        (isRemoval ? error == kAXErrorInvalidUIElement || error == kAXErrorNotificationNotRegistered
                                   : error == kAXErrorNotificationAlreadyRegistered);
    if (!isDone) {
        log_.write(LogLevel::debug, "windows",
                   accessibility::describe(request.notification, error) + " for pid " + std::to_string(pid_));
    }
    return error != kAXErrorCannotComplete;
}

void MacNotificationRegistrations::waitFor(Seconds pause) {
    pause_ = pause;
    retry_ = mainLoop_.after(pause, [this] { tryAgain(); });
}

void MacNotificationRegistrations::tryAgain() {
    retry_.reset();
    hangs_ = false;
    while (!hangs_ && !waiting_.empty()) {
        Request request = std::move(waiting_.front());
        waiting_.pop_front();
        if (!send(request)) {
            hangs_ = true;
            // Last next time: should it be the one that is never answered, the others get their turn.
            waiting_.push_back(std::move(request));
        }
    }
    if (hangs_ && pause_ < longestPause) {
        waitFor(pause_ * 2);
    }
}

/// What waits and is no longer wanted is never sent.
bool MacNotificationRegistrations::cancelsWaiting(const Request& request) {
    return std::erase_if(waiting_, [&](const Request& each) {
               return each.verb != request.verb && each.notification == request.notification &&
                      CFEqual(each.element.get(), request.element.get());
           }) > 0;
}

}  // namespace ferrowyn

#include "platform/macos/mac_accessibility_observer.h"

#include <utility>

#include "platform/log.h"
#include "platform/macos/cf_values.h"
#include "platform/macos/mac_attributes.h"
#include "platform/macos/mac_element.h"
#include "platform/main_loop.h"

namespace ferrowyn {

std::unique_ptr<MacAccessibilityObserver> MacAccessibilityObserver::create(Pid pid,
                                                                           AccessibilityObservers::Handler handler,
                                                                           MainLoop& mainLoop, Log& log) {
    AXObserverRef created = nullptr;
    const AXError error = AXObserverCreate(pid, receive, &created);
    auto watch = std::make_shared<Watch>(Watch{Owned<AXObserverRef>(created), std::move(handler)});
    if (error != kAXErrorSuccess || !watch->observer) {
        return nullptr;
    }
    return std::unique_ptr<MacAccessibilityObserver>(
        new MacAccessibilityObserver(pid, std::move(watch), mainLoop, log));
}

MacAccessibilityObserver::MacAccessibilityObserver(Pid pid, std::shared_ptr<Watch> watch, MainLoop& mainLoop, Log& log)
    : pid_(pid),
      mainLoop_(mainLoop),
      log_(log),
      application_(accessibility::applicationElement(pid)),
      watch_(std::move(watch)) {
    CFRunLoopAddSource(CFRunLoopGetMain(), AXObserverGetRunLoopSource(watch_->observer.get()), kCFRunLoopCommonModes);
    watch_->isAttached = true;
}

MacAccessibilityObserver::~MacAccessibilityObserver() {
    detachFromMainLoop();
    // The system may be in the middle of delivering several notifications of this observer, the first of which ended
    // it. What the others are handed, and the observer that they come from, stays until they have been delivered.
    mainLoop_.post([watch = std::move(watch_)] {});
}

void MacAccessibilityObserver::addApplicationNotification(std::string_view notification) {
    add(application_.get(), notification);
}

void MacAccessibilityObserver::addWindowNotification(const AXElementRef& window, std::string_view notification) {
    if (const AXUIElementRef element = MacElement::elementOf(window)) {
        add(element, notification);
    }
}

void MacAccessibilityObserver::removeWindowNotification(const AXElementRef& window, std::string_view notification) {
    const AXUIElementRef element = MacElement::elementOf(window);
    const auto name = cf::makeString(notification);
    if (element == nullptr || !name) {
        return;
    }
    // A window that has gone took its registrations along.
    const AXError error = AXObserverRemoveNotification(watch_->observer.get(), element, name.get());
    if (error != kAXErrorInvalidUIElement && error != kAXErrorNotificationNotRegistered) {
        logRefusal(notification, error);
    }
}

void MacAccessibilityObserver::detachFromMainLoop() {
    if (std::exchange(watch_->isAttached, false)) {
        CFRunLoopRemoveSource(CFRunLoopGetMain(), AXObserverGetRunLoopSource(watch_->observer.get()),
                              kCFRunLoopCommonModes);
    }
}

void MacAccessibilityObserver::receive(AXObserverRef /*observer*/, AXUIElementRef /*element*/, CFStringRef notification,
                                       void* refcon) {
    const auto* const watch = static_cast<const Watch*>(refcon);
    const auto name = cf::string(notification);
    if (watch == nullptr || !watch->isAttached || !name) {
        return;
    }
    // A copy: the handler may destroy the observer.
    const auto handler = watch->handler;
    handler(*name);
}

void MacAccessibilityObserver::add(AXUIElementRef element, std::string_view notification) {
    if (const auto name = cf::makeString(notification)) {
        logRefusal(notification, AXObserverAddNotification(watch_->observer.get(), element, name.get(), watch_.get()));
    }
}

void MacAccessibilityObserver::logRefusal(std::string_view notification, AXError error) const {
    if (error != kAXErrorSuccess) {
        log_.write(LogLevel::debug, "windows",
                   accessibility::describe(notification, error) + " for pid " + std::to_string(pid_));
    }
}

}  // namespace ferrowyn

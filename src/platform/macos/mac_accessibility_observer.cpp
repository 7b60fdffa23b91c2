#include "platform/macos/mac_accessibility_observer.h"

#include <utility>

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
    auto application = accessibility::applicationElement(pid);
    if (error != kAXErrorSuccess || !watch->observer || !application) {
        return nullptr;
    }
    return std::unique_ptr<MacAccessibilityObserver>(
        new MacAccessibilityObserver(pid, std::move(application), std::move(watch), mainLoop, log));
}

MacAccessibilityObserver::MacAccessibilityObserver(Pid pid, Owned<AXUIElementRef> application,
                                                   std::shared_ptr<Watch> watch, MainLoop& mainLoop, Log& log)
    : mainLoop_(mainLoop),
      application_(std::move(application)),
      watch_(std::move(watch)),
      registrations_(pid, watch_->observer.get(), watch_.get(), mainLoop, log) {
    // After what its maker registers in this turn. Nothing is lost in between: what the application tells waits for
    // the source.
    mainLoop_.post([watch = std::weak_ptr<Watch>(watch_)] {
        if (const auto current = watch.lock()) {
            current->addSource();
        }
    });
}

MacAccessibilityObserver::~MacAccessibilityObserver() {
    detachFromMainLoop();
    // The system may be in the middle of delivering several notifications of this observer, the first of which ended
    // it. What the others are handed, and the observer that they come from, stays until they have been delivered.
    mainLoop_.post([watch = std::move(watch_)] {});
}

void MacAccessibilityObserver::addApplicationNotification(std::string_view notification) {
    registrations_.add(application_.get(), notification);
}

void MacAccessibilityObserver::addWindowNotification(const AXElementRef& window, std::string_view notification) {
    if (const AXUIElementRef element = MacElement::elementOf(window)) {
        registrations_.add(element, notification);
    }
}

void MacAccessibilityObserver::removeWindowNotification(const AXElementRef& window, std::string_view notification) {
    if (const AXUIElementRef element = MacElement::elementOf(window)) {
        registrations_.remove(element, notification);
    }
}

void MacAccessibilityObserver::detachFromMainLoop() {
    registrations_.forgetWaiting();
    watch_->removeSource();
}

void MacAccessibilityObserver::receive(AXObserverRef /*observer*/, AXUIElementRef /*element*/, CFStringRef notification,
                                       void* refcon) {
    const auto* const watch = static_cast<const Watch*>(refcon);
    const auto name = cf::string(notification);
    if (watch == nullptr || watch->source != Watch::Source::onMainLoop || !name) {
        return;
    }
    // A copy: the handler may destroy the observer.
    const auto handler = watch->handler;
    handler(*name);
}

void MacAccessibilityObserver::Watch::addSource() {
    if (source == Source::notYetAdded) {
        CFRunLoopAddSource(CFRunLoopGetMain(), AXObserverGetRunLoopSource(observer.get()), kCFRunLoopCommonModes);
        source = Source::onMainLoop;
    }
}

void MacAccessibilityObserver::Watch::removeSource() {
    if (std::exchange(source, Source::removed) == Source::onMainLoop) {
        CFRunLoopRemoveSource(CFRunLoopGetMain(), AXObserverGetRunLoopSource(observer.get()), kCFRunLoopCommonModes);
    }
}

}  // namespace ferrowyn

#include "tests/macos/fake/fake_observer.h"

#include <algorithm>
#include <utility>

#include "tests/macos/fake/fake_accessibility.h"
#include "tests/macos/fake/fake_core_foundation.h"
#include "tests/macos/fake/fake_element.h"
#include "tests/macos/fake/fake_objects.h"

namespace ferrowyn::fake {

Observer::Observer(Pid pid, AXObserverCallback callback)
    : Object("AXObserver"),
      pid_(pid),
      callback_(callback),
      source_(new RunLoopSource("the observer of " + std::to_string(pid), [this] { return deliver(); })) {
    Accessibility::shared().addObserver(*this);
}

Observer::~Observer() {
    Accessibility::shared().removeObserver(*this);
    // A source that is still on a loop must not come back here.
    source_->isValid = [] { return false; };
}

bool Observer::add(ElementId element, const std::string& notification, void* refcon) {
    const bool isRegistered = std::any_of(registrations_.begin(), registrations_.end(), [&](const auto& each) {
        return each.element == element && each.notification == notification;
    });
    if (!isRegistered) {
        registrations_.push_back({element, notification, refcon});
    }
    return !isRegistered;
}

bool Observer::remove(ElementId element, const std::string& notification) {
    return std::erase_if(registrations_, [&](const auto& each) {
               return each.element == element && each.notification == notification;
           }) > 0;
}

void Observer::enqueue(ElementId element, const std::string& notification) {
    for (const auto& each : registrations_) {
        if (each.element == element && each.notification == notification) {
            waiting_.push_back(each);
        }
    }
}

bool Observer::deliver() {
    const auto batch = std::exchange(waiting_, {});
    const auto callback = callback_;
    const auto observer = as<AXObserverRef>();
    for (const auto& each : batch) {
        // The callback may have ended this object: nothing of it is touched, and whoever is called back should notice.
        const Held<ElementHandle> element(new ElementHandle(each.element));
        const Held<String> name(new String({each.notification.begin(), each.notification.end()}));
        callback(observer, element.get()->as<AXUIElementRef>(), name.get()->as<CFStringRef>(), each.refcon);
        if (Objects::shared().findAny(observer, "the delivery of a notification") == nullptr) {
            return true;
        }
    }
    return !batch.empty();
}

}  // namespace ferrowyn::fake

using namespace ferrowyn::fake;

namespace {

struct Request {
    Observer* observer;
    ElementHandle* element;
    std::string notification;
};

Request requestOf(AXObserverRef observer, AXUIElementRef element, CFStringRef notification, const char* user) {
    return {Objects::shared().find<Observer>(observer, user), Objects::shared().find<ElementHandle>(element, user),
            String::textOf(notification, user)};
}

AXError ask(const char* verb, const Request& request) {
    auto& accessibility = Accessibility::shared();
    const auto id = request.element->id();
    const AXError error =
        accessibility.ask(std::string(verb) + " " + request.notification, id, request.element->timeout);
    return error != kAXErrorSuccess ? error : accessibility.refusalOf(id, request.notification);
}

}  // namespace

AXError AXObserverCreate(pid_t application, AXObserverCallback callback, AXObserverRef* observer) {
    if (!Accessibility::shared().canObserve(application)) {
        return kAXErrorCannotComplete;
    }
    *observer = (new Observer(application, callback))->as<AXObserverRef>();
    return kAXErrorSuccess;
}

AXError AXObserverAddNotification(AXObserverRef observer, AXUIElementRef element, CFStringRef notification,
                                  void* refcon) {
    const auto request = requestOf(observer, element, notification, "AXObserverAddNotification");
    if (request.observer == nullptr || request.element == nullptr) {
        return kAXErrorIllegalArgument;
    }
    if (const AXError error = ask("add", request); error != kAXErrorSuccess) {
        return error;
    }
    return request.observer->add(request.element->id(), request.notification, refcon)
               ? kAXErrorSuccess
               : kAXErrorNotificationAlreadyRegistered;
}

AXError AXObserverRemoveNotification(AXObserverRef observer, AXUIElementRef element, CFStringRef notification) {
    const auto request = requestOf(observer, element, notification, "AXObserverRemoveNotification");
    if (request.observer == nullptr || request.element == nullptr) {
        return kAXErrorIllegalArgument;
    }
    if (const AXError error = ask("remove", request); error != kAXErrorSuccess) {
        return error;
    }
    return request.observer->remove(request.element->id(), request.notification) ? kAXErrorSuccess
                                                                                 : kAXErrorNotificationNotRegistered;
}

CFRunLoopSourceRef AXObserverGetRunLoopSource(AXObserverRef observer) {
    auto* const found = Objects::shared().find<Observer>(observer, "AXObserverGetRunLoopSource");
    return found != nullptr ? found->source().as<CFRunLoopSourceRef>() : nullptr;
}

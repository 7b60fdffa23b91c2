#include "tests/macos/fake/fake_accessibility.h"

#include <algorithm>
#include <cstdio>
#include <utility>

#include "tests/macos/fake/fake_system.h"

namespace ferrowyn::fake {

namespace {

std::string shortNumber(float number) {
    char text[32];
    std::snprintf(text, sizeof text, "%g", static_cast<double>(number));
    return text;
}

}  // namespace

Accessibility& Accessibility::shared() {
    static auto* const accessibility = new Accessibility;
    return *accessibility;
}

void Accessibility::reset() {
    const std::scoped_lock lock(lock_);
    refusesHandles = false;
    applications_.clear();
    elements_.clear();
    requests_.clear();
    secondsWaited_ = 0;
    lastElement_ = 0;
}

ElementId Accessibility::addApplication(Pid pid) {
    const std::scoped_lock lock(lock_);
    const ElementId id{++lastElement_};
    elements_[id] = Element{.pid = pid};
    applications_[pid] = Application{.element = id};
    return id;
}

ElementId Accessibility::addWindow(Pid pid, Element window) {
    const std::scoped_lock lock(lock_);
    const ElementId id{++lastElement_};
    window.pid = pid;
    elements_[id] = std::move(window);
    auto& windows = elements_.at(applications_.at(pid).element).attributes["AXWindows"];
    if (!std::holds_alternative<std::vector<Value>>(windows)) {
        windows = std::vector<Value>();
    }
    std::get<std::vector<Value>>(windows).emplace_back(id);
    return id;
}

void Accessibility::post(ElementId element, const std::string& notification) {
    {
        const std::scoped_lock lock(lock_);
        for (auto* const observer : observers_) {
            observer->enqueue(element, notification);
        }
    }
    RunLoop::wakeAll();
}

std::vector<std::string> Accessibility::takeRequests() {
    const std::scoped_lock lock(lock_);
    return std::exchange(requests_, {});
}

double Accessibility::secondsWaited() const {
    const std::scoped_lock lock(lock_);
    return secondsWaited_;
}

AXError Accessibility::ask(const std::string& request, ElementId id, float timeout) {
    const std::scoped_lock lock(lock_);
    requests_.push_back(request + " of " + std::to_string(id.number) + " within " + shortNumber(timeout));
    if (!System::shared().isTrusted) {
        return kAXErrorAPIDisabled;
    }
    const auto element = elements_.find(id);
    const auto application = element != elements_.end() ? applications_.find(element->second.pid) : applications_.end();
    if (application == applications_.end()) {
        return kAXErrorInvalidUIElement;
    }
    auto& left = application->second.requestsUntilItHangs;
    if (left && (*left)-- == 0) {
        application->second.hangs = true;
    }
    if (application->second.hangs) {
        secondsWaited_ += static_cast<double>(timeout);
        return kAXErrorCannotComplete;
    }
    return element->second.isGone ? kAXErrorInvalidUIElement : kAXErrorSuccess;
}

AXError Accessibility::copyValue(ElementId id, const std::string& attribute, CFTypeRef& value) const {
    const std::scoped_lock lock(lock_);
    const auto& attributes = elements_.at(id).attributes;
    const auto found = attributes.find(attribute);
    if (found == attributes.end()) {
        return kAXErrorAttributeUnsupported;
    }
    if (const auto* const error = std::get_if<AXError>(&found->second)) {
        return *error;
    }
    value = copy(found->second);
    return kAXErrorSuccess;
}

AXError Accessibility::refusalOf(ElementId id, const std::string& name) const {
    const std::scoped_lock lock(lock_);
    const auto& refusals = elements_.at(id).refusals;
    const auto found = refusals.find(name);
    return found != refusals.end() ? found->second : kAXErrorSuccess;
}

void Accessibility::setValue(ElementId id, const std::string& attribute, Value value) {
    const std::scoped_lock lock(lock_);
    elements_.at(id).attributes[attribute] = std::move(value);
}

ElementId Accessibility::elementOfApplication(Pid pid) {
    const std::scoped_lock lock(lock_);
    const auto found = applications_.find(pid);
    // Anybody may make an element of any number; what is asked of it is refused.
    return found != applications_.end() ? found->second.element : ElementId{-pid};
}

bool Accessibility::canObserve(Pid pid) const {
    const std::scoped_lock lock(lock_);
    const auto found = applications_.find(pid);
    return found != applications_.end() && found->second.canBeObserved;
}

AXError Accessibility::bulkError(ElementId id) const {
    const std::scoped_lock lock(lock_);
    return applications_.at(elements_.at(id).pid).bulkError;
}

std::optional<std::size_t> Accessibility::mostValuesInBulk(ElementId id) const {
    const std::scoped_lock lock(lock_);
    return applications_.at(elements_.at(id).pid).mostValuesInBulk;
}

std::optional<CGWindowID> Accessibility::windowNumber(ElementId id) const {
    const std::scoped_lock lock(lock_);
    const auto found = elements_.find(id);
    return found != elements_.end() ? found->second.windowNumber : std::nullopt;
}

void Accessibility::addObserver(Observer& observer) {
    const std::scoped_lock lock(lock_);
    observers_.push_back(&observer);
}

void Accessibility::removeObserver(const Observer& observer) {
    const std::scoped_lock lock(lock_);
    std::erase(observers_, &observer);
}

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
        // The callback may end this object, so nothing of it is used after the call.
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

ElementHandle* handleOf(AXUIElementRef element, const char* user) {
    return Objects::shared().find<ElementHandle>(element, user);
}

/// The value that "AXMain" and the others are set to, as a script would say it.
Value valueOf(CFTypeRef value) {
    auto* const object = Objects::shared().findAny(value, "AXUIElementSetAttributeValue");
    if (const auto* const truth = dynamic_cast<const Truth*>(object)) {
        return truth->value();
    }
    if (const auto* const element = dynamic_cast<const ElementHandle*>(object)) {
        return element->id();
    }
    Objects::shared().fault("AXUIElementSetAttributeValue to a value that no window takes");
    return {};
}

std::string describe(const Value& value) {
    if (const auto* const truth = std::get_if<bool>(&value)) {
        return *truth ? "true" : "false";
    }
    const auto* const element = std::get_if<ElementId>(&value);
    return element != nullptr ? std::to_string(element->number) : "?";
}

struct Request {
    Observer* observer;
    ElementHandle* element;
    std::string notification;
};

Request requestOf(AXObserverRef observer, AXUIElementRef element, CFStringRef notification, const char* user) {
    return {Objects::shared().find<Observer>(observer, user), handleOf(element, user),
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

CFTypeID AXUIElementGetTypeID() {
    return std::hash<std::string>{}("AXUIElement");
}

AXUIElementRef AXUIElementCreateApplication(pid_t pid) {
    if (Accessibility::shared().refusesHandles) {
        return nullptr;
    }
    return (new ElementHandle(Accessibility::shared().elementOfApplication(pid)))->as<AXUIElementRef>();
}

AXError AXUIElementSetMessagingTimeout(AXUIElementRef element, float timeoutInSeconds) {
    auto* const handle = handleOf(element, "AXUIElementSetMessagingTimeout");
    if (handle == nullptr || timeoutInSeconds < 0) {
        return kAXErrorIllegalArgument;
    }
    handle->timeout = timeoutInSeconds;
    return kAXErrorSuccess;
}

AXError AXUIElementCopyAttributeValue(AXUIElementRef element, CFStringRef attribute, CFTypeRef* value) {
    const auto* const handle = handleOf(element, "AXUIElementCopyAttributeValue");
    if (handle == nullptr) {
        return kAXErrorIllegalArgument;
    }
    auto& accessibility = Accessibility::shared();
    const std::string name = String::textOf(attribute, "AXUIElementCopyAttributeValue");
    const AXError error = accessibility.ask("copy " + name, handle->id(), handle->timeout);
    return error != kAXErrorSuccess ? error : accessibility.copyValue(handle->id(), name, *value);
}

AXError AXUIElementCopyMultipleAttributeValues(AXUIElementRef element, CFArrayRef attributes,
                                               AXCopyMultipleAttributeOptions options, CFArrayRef* values) {
    const auto* const handle = handleOf(element, "AXUIElementCopyMultipleAttributeValues");
    const auto* const names = Objects::shared().find<Array>(attributes, "AXUIElementCopyMultipleAttributeValues");
    if (handle == nullptr || names == nullptr) {
        return kAXErrorIllegalArgument;
    }
    auto& accessibility = Accessibility::shared();
    std::string request = "copy";
    for (const auto& name : names->values()) {
        request += " " + String::textOf(reinterpret_cast<CFStringRef>(name.get()), "an attribute's name");
    }
    if (const AXError error = accessibility.ask(request, handle->id(), handle->timeout); error != kAXErrorSuccess) {
        return error;
    }
    if (const AXError error = accessibility.bulkError(handle->id()); error != kAXErrorSuccess) {
        return error;
    }
    std::vector<Held<const Object>> answers;
    for (const auto& name : names->values()) {
        CFTypeRef value = nullptr;
        const AXError error = accessibility.copyValue(
            handle->id(), String::textOf(reinterpret_cast<CFStringRef>(name.get()), "an attribute's name"), value);
        if (error != kAXErrorSuccess && (options & kAXCopyMultipleAttributeOptionStopOnError) != 0) {
            return error;
        }
        answers.push_back(error == kAXErrorSuccess ? Held<const Object>(static_cast<const Object*>(value))
                                                   : Held<const Object>(new AccessibilityValue(error)));
    }
    while (answers.size() > accessibility.mostValuesInBulk(handle->id()).value_or(answers.size())) {
        answers.pop_back();
    }
    *values = (new Array(std::move(answers)))->as<CFArrayRef>();
    return kAXErrorSuccess;
}

AXError AXUIElementSetAttributeValue(AXUIElementRef element, CFStringRef attribute, CFTypeRef value) {
    const auto* const handle = handleOf(element, "AXUIElementSetAttributeValue");
    if (handle == nullptr) {
        return kAXErrorIllegalArgument;
    }
    auto& accessibility = Accessibility::shared();
    const std::string name = String::textOf(attribute, "AXUIElementSetAttributeValue");
    const Value script = valueOf(value);
    AXError error = accessibility.ask("set " + name + " to " + describe(script), handle->id(), handle->timeout);
    if (error == kAXErrorSuccess) {
        error = accessibility.refusalOf(handle->id(), name);
    }
    if (error == kAXErrorSuccess) {
        accessibility.setValue(handle->id(), name, script);
    }
    return error;
}

AXError AXUIElementPerformAction(AXUIElementRef element, CFStringRef action) {
    const auto* const handle = handleOf(element, "AXUIElementPerformAction");
    if (handle == nullptr) {
        return kAXErrorIllegalArgument;
    }
    auto& accessibility = Accessibility::shared();
    const std::string name = String::textOf(action, "AXUIElementPerformAction");
    const AXError error = accessibility.ask("perform " + name, handle->id(), handle->timeout);
    return error != kAXErrorSuccess ? error : accessibility.refusalOf(handle->id(), name);
}

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

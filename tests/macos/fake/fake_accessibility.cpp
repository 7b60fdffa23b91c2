#include "tests/macos/fake/fake_accessibility.h"

#include <algorithm>
#include <sstream>
#include <utility>

#include "tests/macos/fake/fake_system.h"

namespace ferrowyn::fake {

Accessibility& Accessibility::shared() {
    static auto* const accessibility = new Accessibility;
    return *accessibility;
}

void Accessibility::reset() {
    const std::scoped_lock guard(lock);
    refusesHandles = false;
    applications.clear();
    elements.clear();
    requests_.clear();
    secondsWaited_ = 0;
    lastElement_ = 0;
}

ElementId Accessibility::addApplication(Pid pid) {
    const std::scoped_lock guard(lock);
    const ElementId id{++lastElement_};
    elements[id] = Element{.pid = pid};
    applications[pid] = Application{.element = id};
    return id;
}

ElementId Accessibility::addWindow(Pid pid, Element window) {
    const std::scoped_lock guard(lock);
    const ElementId id{++lastElement_};
    window.pid = pid;
    elements[id] = std::move(window);
    auto& windows = elements.at(applications.at(pid).element).attributes["AXWindows"];
    if (!std::holds_alternative<std::vector<Value>>(windows)) {
        windows = std::vector<Value>();
    }
    std::get<std::vector<Value>>(windows).emplace_back(id);
    return id;
}

void Accessibility::post(ElementId element, const std::string& notification) {
    {
        const std::scoped_lock guard(lock);
        for (auto* const observer : observers) {
            std::ranges::copy_if(observer->registrations, std::back_inserter(observer->waiting),
                                 [&](const auto& each) { return each.isFor(element, notification); });
        }
    }
    RunLoop::wakeAll();
}

std::vector<std::string> Accessibility::takeRequests() {
    const std::scoped_lock guard(lock);
    return std::exchange(requests_, {});
}

double Accessibility::secondsWaited() const {
    const std::scoped_lock guard(lock);
    return secondsWaited_;
}

AXError Accessibility::ask(const std::string& request, const ElementHandle& handle) {
    std::ostringstream line;
    line << request << " of " << handle.id.number << " within " << handle.timeout;
    requests_.push_back(line.str());
    if (!System::shared().isTrusted) {
        return kAXErrorAPIDisabled;
    }
    const auto element = elements.find(handle.id);
    const auto application = element != elements.end() ? applications.find(element->second.pid) : applications.end();
    if (application == applications.end()) {
        return kAXErrorInvalidUIElement;
    }
    auto& left = application->second.requestsUntilItHangs;
    if (left && (*left)-- == 0) {
        application->second.hangs = true;
    }
    if (application->second.hangs) {
        secondsWaited_ += static_cast<double>(handle.timeout);
        return kAXErrorCannotComplete;
    }
    return element->second.isGone ? kAXErrorInvalidUIElement : kAXErrorSuccess;
}

Observer::Observer(Pid pid, AXObserverCallback callback)
    : Object("AXObserver"),
      source(new RunLoopSource("the observer of " + std::to_string(pid), [this] { return deliver(); })),
      callback_(callback) {
    auto& accessibility = Accessibility::shared();
    const std::scoped_lock guard(accessibility.lock);
    accessibility.observers.push_back(this);
}

Observer::~Observer() {
    auto& accessibility = Accessibility::shared();
    const std::scoped_lock guard(accessibility.lock);
    std::erase(accessibility.observers, this);
    // A source that is still on a loop must not come back here.
    source->isValid = [] { return false; };
}

bool Observer::deliver() {
    const auto batch = std::exchange(waiting, {});
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

/// A request that has been sent to an element, with the lock held while it is answered.
struct Request {
    Request(AXUIElementRef element, const std::string& words, const char* user)
        : handle(Objects::shared().get<ElementHandle>(element, user)),
          error(accessibility.ask(words, handle)),
          known(error == kAXErrorSuccess ? &accessibility.element(handle.id) : nullptr) {}

    /// What the element answers to an attribute, an action or a notification of this name.
    [[nodiscard]] AXError answer(const std::string& name) const {
        if (error != kAXErrorSuccess) {
            return error;
        }
        const auto refusal = known->refusals.find(name);
        return refusal != known->refusals.end() ? refusal->second : kAXErrorSuccess;
    }
    /// The error in the place of the value, if there is one.
    [[nodiscard]] AXError copyValue(const std::string& attribute, CFTypeRef& value) const {
        const auto found = known->attributes.find(attribute);
        if (found == known->attributes.end()) {
            return kAXErrorAttributeUnsupported;
        }
        if (const auto* const refused = std::get_if<AXError>(&found->second)) {
            return *refused;
        }
        value = copy(found->second);
        return kAXErrorSuccess;
    }

    Accessibility& accessibility = Accessibility::shared();
    std::unique_lock<std::recursive_mutex> guard{accessibility.lock};
    const ElementHandle& handle;
    const AXError error;
    Accessibility::Element* const known;
};

/// The value that "AXMain" and the others are set to, as a script would say it, and in words.
std::pair<Value, std::string> valueOf(CFTypeRef value) {
    auto* const object = Objects::shared().findAny(value, "AXUIElementSetAttributeValue");
    if (const auto* const truth = dynamic_cast<const Truth*>(object)) {
        return {truth->content, truth->content ? "true" : "false"};
    }
    if (const auto* const element = dynamic_cast<const ElementHandle*>(object)) {
        return {element->id, std::to_string(element->id.number)};
    }
    Objects::shared().fault("AXUIElementSetAttributeValue to a value that no window takes");
    return {{}, "?"};
}

}  // namespace

AXUIElementRef AXUIElementCreateApplication(pid_t pid) {
    auto& accessibility = Accessibility::shared();
    const std::scoped_lock guard(accessibility.lock);
    if (accessibility.refusesHandles) {
        return nullptr;
    }
    const auto found = accessibility.applications.find(pid);
    // Anybody may make an element of any number; what is asked of it is refused.
    const ElementId id = found != accessibility.applications.end() ? found->second.element : ElementId{-pid};
    return (new ElementHandle(id))->as<AXUIElementRef>();
}

AXError AXUIElementSetMessagingTimeout(AXUIElementRef element, float timeoutInSeconds) {
    Objects::shared().get<ElementHandle>(element, "AXUIElementSetMessagingTimeout").timeout = timeoutInSeconds;
    return timeoutInSeconds < 0 ? kAXErrorIllegalArgument : kAXErrorSuccess;
}

AXError AXUIElementCopyAttributeValue(AXUIElementRef element, CFStringRef attribute, CFTypeRef* value) {
    const std::string name = textOf(attribute, "AXUIElementCopyAttributeValue");
    const Request request(element, "copy " + name, "AXUIElementCopyAttributeValue");
    return request.error != kAXErrorSuccess ? request.error : request.copyValue(name, *value);
}

AXError AXUIElementCopyMultipleAttributeValues(AXUIElementRef element, CFArrayRef attributes,
                                               AXCopyMultipleAttributeOptions options, CFArrayRef* values) {
    std::string words = "copy";
    std::vector<std::string> names;
    for (const auto& each :
         Objects::shared().get<Array>(attributes, "AXUIElementCopyMultipleAttributeValues").content) {
        names.push_back(textOf(each.get(), "an attribute's name"));
        words += " " + names.back();
    }
    const Request request(element, words, "AXUIElementCopyMultipleAttributeValues");
    if (request.error != kAXErrorSuccess) {
        return request.error;
    }
    const auto& application = request.accessibility.application(request.known->pid);
    if (application.bulkError != kAXErrorSuccess) {
        return application.bulkError;
    }
    std::vector<Held<const Object>> answers;
    for (const auto& name : names) {
        CFTypeRef value = nullptr;
        const AXError error = request.copyValue(name, value);
        if (error != kAXErrorSuccess && (options & kAXCopyMultipleAttributeOptionStopOnError) != 0) {
            return error;
        }
        answers.push_back(Held<const Object>(static_cast<const Object*>(value != nullptr ? value : copy(error))));
    }
    while (answers.size() > application.mostValuesInBulk.value_or(answers.size())) {
        answers.pop_back();
    }
    *values = (new Array(std::move(answers)))->as<CFArrayRef>();
    return kAXErrorSuccess;
}

AXError AXUIElementSetAttributeValue(AXUIElementRef element, CFStringRef attribute, CFTypeRef value) {
    const std::string name = textOf(attribute, "AXUIElementSetAttributeValue");
    const auto [script, words] = valueOf(value);
    const Request request(element, "set " + name + " to " + words, "AXUIElementSetAttributeValue");
    const AXError error = request.answer(name);
    if (error == kAXErrorSuccess) {
        request.known->attributes[name] = script;
    }
    return error;
}

AXError AXUIElementPerformAction(AXUIElementRef element, CFStringRef action) {
    const std::string name = textOf(action, "AXUIElementPerformAction");
    return Request(element, "perform " + name, "AXUIElementPerformAction").answer(name);
}

AXError AXObserverCreate(pid_t application, AXObserverCallback callback, AXObserverRef* observer) {
    auto& accessibility = Accessibility::shared();
    const std::scoped_lock guard(accessibility.lock);
    const auto found = accessibility.applications.find(application);
    if (found == accessibility.applications.end() || !found->second.canBeObserved) {
        return kAXErrorCannotComplete;
    }
    *observer = (new Observer(application, callback))->as<AXObserverRef>();
    return kAXErrorSuccess;
}

AXError AXObserverAddNotification(AXObserverRef observer, AXUIElementRef element, CFStringRef notification,
                                  void* refcon) {
    auto& registrations = Objects::shared().get<Observer>(observer, "AXObserverAddNotification").registrations;
    const std::string name = textOf(notification, "AXObserverAddNotification");
    const Request request(element, "add " + name, "AXObserverAddNotification");
    if (const AXError error = request.answer(name); error != kAXErrorSuccess) {
        return error;
    }
    if (std::ranges::any_of(registrations, [&](const auto& each) { return each.isFor(request.handle.id, name); })) {
        return kAXErrorNotificationAlreadyRegistered;
    }
    registrations.push_back({request.handle.id, name, refcon});
    return kAXErrorSuccess;
}

AXError AXObserverRemoveNotification(AXObserverRef observer, AXUIElementRef element, CFStringRef notification) {
    auto& registrations = Objects::shared().get<Observer>(observer, "AXObserverRemoveNotification").registrations;
    const std::string name = textOf(notification, "AXObserverRemoveNotification");
    const Request request(element, "remove " + name, "AXObserverRemoveNotification");
    if (const AXError error = request.answer(name); error != kAXErrorSuccess) {
        return error;
    }
    const auto removed =
        std::erase_if(registrations, [&](const auto& each) { return each.isFor(request.handle.id, name); });
    return removed > 0 ? kAXErrorSuccess : kAXErrorNotificationNotRegistered;
}

CFRunLoopSourceRef AXObserverGetRunLoopSource(AXObserverRef observer) {
    return Objects::shared().get<Observer>(observer, "AXObserverGetRunLoopSource").source->as<CFRunLoopSourceRef>();
}

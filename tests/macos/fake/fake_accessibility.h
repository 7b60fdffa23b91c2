#pragma once

#include <CoreGraphics/CoreGraphics.h>
#include <HIServices/HIServices.h>

#include <atomic>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "core/app_window.h"
#include "tests/macos/fake/fake_core_foundation.h"
#include "tests/macos/fake/fake_run_loop.h"

namespace ferrowyn::fake {

/// A handle of an element. Handles of one element are equal, and each has its own messaging timeout.
class ElementHandle final : public Object {
public:
    explicit ElementHandle(ElementId element) : Object("AXUIElement"), id(element) {}

    [[nodiscard]] bool equals(const Object& other) const override {
        return dynamic_cast<const ElementHandle&>(other).id == id;
    }
    [[nodiscard]] std::size_t hash() const override { return static_cast<std::size_t>(id.number) * 7919; }

    const ElementId id;
    /// The system's default.
    std::atomic<float> timeout = 6;
};

/// An observer of one application. Its source delivers all waiting notifications at once, even when a callback ends the
/// observer in between.
class Observer final : public Object {
public:
    Observer(Pid pid, AXObserverCallback callback);
    ~Observer() override;

    struct Registration {
        ElementId element;
        std::string notification;
        void* refcon = nullptr;
        [[nodiscard]] bool isFor(ElementId id, const std::string& name) const {
            return element == id && notification == name;
        }
    };
    std::vector<Registration> registrations;
    std::vector<Registration> waiting;
    Held<RunLoopSource> source;

private:
    bool deliver();

    AXObserverCallback callback_;
};

/// The Accessibility interfaces of the scripted applications. Scripted on the main thread, asked from any.
class Accessibility {
public:
    struct Element {
        Pid pid = 0;
        std::map<std::string, Value> attributes;
        /// The answer to setting an attribute, performing an action or registering a notification of this name.
        std::map<std::string, AXError> refusals;
        std::optional<CGWindowID> windowNumber;
        /// It was destroyed: every request to it is answered so.
        bool isGone = false;
    };

    struct Application {
        ElementId element;
        bool hangs = false;
        /// Answers this many requests more, then hangs.
        std::optional<int> requestsUntilItHangs;
        bool canBeObserved = true;
        /// The answer to a request for several attributes.
        AXError bulkError = kAXErrorSuccess;
        /// The most values in an answer to such a request.
        std::optional<std::size_t> mostValuesInBulk;
    };

    [[nodiscard]] static Accessibility& shared();
    void reset();

    /// No handle of an application is made.
    std::atomic<bool> refusesHandles = false;

    ElementId addApplication(Pid pid);
    /// Also listed last among the application's "AXWindows".
    ElementId addWindow(Pid pid, Element window);
    [[nodiscard]] Application& application(Pid pid) { return applications.at(pid); }
    [[nodiscard]] Element& element(ElementId id) { return elements.at(id); }

    /// Sends the notification to the application's observers, which get it when their run loop runs.
    void post(ElementId element, const std::string& notification);

    /// Each message in its order, such as "copy AXWindows of 1 within 0.35".
    [[nodiscard]] std::vector<std::string> takeRequests();
    /// How long applications that hang were waited for, in all.
    [[nodiscard]] double secondsWaited() const;

    // What the fake's functions need, with the lock held.
    /// Notes the request; what the application and the element answer to any.
    [[nodiscard]] AXError ask(const std::string& request, const ElementHandle& handle);
    mutable std::recursive_mutex lock;
    std::map<Pid, Application> applications;
    std::map<ElementId, Element> elements;
    std::vector<Observer*> observers;

private:
    std::vector<std::string> requests_;
    double secondsWaited_ = 0;
    int lastElement_ = 0;
};

}  // namespace ferrowyn::fake

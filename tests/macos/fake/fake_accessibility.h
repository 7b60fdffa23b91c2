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
#include "tests/macos/fake/fake_objects.h"
#include "tests/macos/fake/fake_run_loop.h"

namespace ferrowyn::fake {

class Observer;

/// A handle of an element. Handles of one element are equal, and each has its own messaging timeout.
class ElementHandle final : public Object {
public:
    /// The system's default.
    static constexpr float defaultTimeout = 6;

    explicit ElementHandle(ElementId id) : Object("AXUIElement"), id_(id) {}

    [[nodiscard]] ElementId id() const { return id_; }
    [[nodiscard]] bool equals(const Object& other) const override {
        return dynamic_cast<const ElementHandle&>(other).id_ == id_;
    }
    [[nodiscard]] std::size_t hash() const override { return static_cast<std::size_t>(id_.number) * 7919; }

    std::atomic<float> timeout{defaultTimeout};

private:
    ElementId id_;
};

}  // namespace ferrowyn::fake

namespace ferrowyn::fake {

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
    [[nodiscard]] Application& application(Pid pid) { return applications_.at(pid); }
    [[nodiscard]] Element& element(ElementId id) { return elements_.at(id); }

    /// Sends the notification to the application's observers, which get it when their run loop runs.
    void post(ElementId element, const std::string& notification);

    /// Each message in its order, such as "copy AXWindows of 1 within 0.35".
    [[nodiscard]] std::vector<std::string> takeRequests();
    /// How long applications that hang were waited for, in all.
    [[nodiscard]] double secondsWaited() const;

    // What the fake's functions need.
    [[nodiscard]] AXError ask(const std::string& request, ElementId id, float timeout);
    [[nodiscard]] AXError copyValue(ElementId id, const std::string& attribute, CFTypeRef& value) const;
    [[nodiscard]] AXError refusalOf(ElementId id, const std::string& name) const;
    void setValue(ElementId id, const std::string& attribute, Value value);
    [[nodiscard]] ElementId elementOfApplication(Pid pid);
    [[nodiscard]] bool canObserve(Pid pid) const;
    [[nodiscard]] AXError bulkError(ElementId id) const;
    [[nodiscard]] std::optional<std::size_t> mostValuesInBulk(ElementId id) const;
    [[nodiscard]] std::optional<CGWindowID> windowNumber(ElementId id) const;
    void addObserver(Observer& observer);
    void removeObserver(const Observer& observer);

private:
    mutable std::recursive_mutex lock_;
    std::map<Pid, Application> applications_;
    std::map<ElementId, Element> elements_;
    std::vector<Observer*> observers_;
    std::vector<std::string> requests_;
    double secondsWaited_ = 0;
    int lastElement_ = 0;
};

}  // namespace ferrowyn::fake

namespace ferrowyn::fake {

/// An observer of one application. Its source delivers all waiting notifications at once, even when a callback ends the
/// observer in between.
class Observer final : public Object {
public:
    Observer(Pid pid, AXObserverCallback callback);
    ~Observer() override;

    [[nodiscard]] Pid pid() const { return pid_; }
    [[nodiscard]] RunLoopSource& source() { return *source_.get(); }

    /// False when it is registered already.
    bool add(ElementId element, const std::string& notification, void* refcon);
    /// False when it is not registered.
    bool remove(ElementId element, const std::string& notification);
    void enqueue(ElementId element, const std::string& notification);

private:
    struct Registration {
        ElementId element;
        std::string notification;
        void* refcon;
    };

    bool deliver();

    Pid pid_;
    AXObserverCallback callback_;
    std::vector<Registration> registrations_;
    std::vector<Registration> waiting_;
    Held<RunLoopSource> source_;
};

}  // namespace ferrowyn::fake

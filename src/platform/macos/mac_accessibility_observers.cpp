#include "platform/macos/mac_accessibility_observers.h"

#include <ApplicationServices/ApplicationServices.h>

#include <array>
#include <cassert>
#include <deque>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "core/app_window.h"
#include "core/published.h"
#include "platform/log.h"
#include "platform/macos/cf_values.h"
#include "platform/macos/mac_element.h"
#include "platform/main_loop.h"

namespace ferrowyn {

namespace {

constexpr std::array<std::pair<AccessibilityNotification, std::string_view>, 10> systemNames{{
    {AccessibilityNotification::windowCreated, "AXWindowCreated"},
    {AccessibilityNotification::focusedWindowChanged, "AXFocusedWindowChanged"},
    {AccessibilityNotification::mainWindowChanged, "AXMainWindowChanged"},
    {AccessibilityNotification::applicationHidden, "AXApplicationHidden"},
    {AccessibilityNotification::applicationShown, "AXApplicationShown"},
    {AccessibilityNotification::applicationActivated, "AXApplicationActivated"},
    {AccessibilityNotification::uiElementDestroyed, "AXUIElementDestroyed"},
    {AccessibilityNotification::windowMiniaturized, "AXWindowMiniaturized"},
    {AccessibilityNotification::windowDeminiaturized, "AXWindowDeminiaturized"},
    {AccessibilityNotification::titleChanged, "AXTitleChanged"},
}};

/// Nothing for a name that is never registered.
std::optional<AccessibilityNotification> notificationNamed(std::string_view name) {
    for (const auto& [notification, systemName] : systemNames) {
        if (systemName == name) {
            return notification;
        }
    }
    return std::nullopt;
}

}  // namespace

std::string_view systemName(AccessibilityNotification notification) {
    for (const auto& [each, name] : systemNames) {
        if (each == notification) {
            return name;
        }
    }
    assert(false && "each notification has a name");
    return {};
}

/// Registers one observer's notifications with its application. Each registration is a message for whose answer the
/// main thread waits: an application that hangs is waited for once, and the other registrations are sent later. Main
/// thread.
class MacNotificationRegistrations {
public:
    /// `refcon` is what the observer's callback is given. The observer, `refcon`, the loop and the log outlive this.
    MacNotificationRegistrations(Pid pid, AXObserverRef observer, void* refcon, MainLoop& mainLoop, Log& log);
    MacNotificationRegistrations(const MacNotificationRegistrations&) = delete;
    MacNotificationRegistrations& operator=(const MacNotificationRegistrations&) = delete;

    void add(AXUIElementRef element, AccessibilityNotification notification);
    void remove(AXUIElementRef element, AccessibilityNotification notification);
    /// Drops the requests that still wait.
    void forgetWaiting();

    static constexpr Seconds messagingTimeout{0.5};
    /// Each pause is twice as long as the one before. After the longest there is no retry until another window is
    /// added: windows are only found in applications that answer.
    static constexpr Seconds firstPause{1.0};
    static constexpr Seconds longestPause{128.0};

private:
    enum class Verb { add, remove };
    struct Request {
        Verb verb;
        Owned<AXUIElementRef> element;
        AccessibilityNotification notification;
    };

    void request(Request request);
    /// False when the application did not answer.
    [[nodiscard]] bool send(const Request& request) const;
    void waitFor(Seconds pause);
    void tryAgain();
    [[nodiscard]] bool cancelsWaiting(const Request& request);

    Pid pid_;
    AXObserverRef observer_;
    void* refcon_;
    MainLoop& mainLoop_;
    Log& log_;
    bool hangs_ = false;
    std::deque<Request> waiting_;
    Seconds pause_{};
    Subscription retry_;
};

/// Watches one application through an observer whose source is on the main run loop, in the common modes so that a
/// menu being tracked does not hold changes up. Main thread.
class MacAccessibilityObserver final : public AccessibilityObserver {
public:
    /// Null when the system makes no observer for the process. Both references outlive this.
    [[nodiscard]] static std::unique_ptr<MacAccessibilityObserver> create(Pid pid,
                                                                          AccessibilityObservers::Handler handler,
                                                                          MainLoop& mainLoop, Log& log);
    ~MacAccessibilityObserver() override;
    MacAccessibilityObserver(const MacAccessibilityObserver&) = delete;
    MacAccessibilityObserver& operator=(const MacAccessibilityObserver&) = delete;

    void addApplicationNotification(AccessibilityNotification notification) override;
    void addWindowNotification(const AXElementRef& window, AccessibilityNotification notification) override;
    void removeWindowNotification(const AXElementRef& window, AccessibilityNotification notification) override;
    void detachFromMainLoop() override;

private:
    /// What the system's callback gets as its `refcon`.
    struct Watch {
        enum class Source { notYetAdded, onMainLoop, removed };

        void addSource();
        void removeSource();

        Owned<AXObserverRef> observer;
        AccessibilityObservers::Handler handler;
        Source source = Source::notYetAdded;
    };

    MacAccessibilityObserver(Pid pid, Owned<AXUIElementRef> application, std::shared_ptr<Watch> watch,
                             MainLoop& mainLoop, Log& log);

    static void receive(AXObserverRef observer, AXUIElementRef element, CFStringRef name, void* refcon);

    MainLoop& mainLoop_;
    Owned<AXUIElementRef> application_;
    /// Shared with the main loop for one turn after this object's end: see the destructor.
    std::shared_ptr<Watch> watch_;
    MacNotificationRegistrations registrations_;
};

std::unique_ptr<AccessibilityObserver> MacAccessibilityObservers::create(Pid pid, Handler handler) {
    return MacAccessibilityObserver::create(pid, std::move(handler), mainLoop_, log_);
}

MacNotificationRegistrations::MacNotificationRegistrations(Pid pid, AXObserverRef observer, void* refcon,
                                                           MainLoop& mainLoop, Log& log)
    : pid_(pid), observer_(observer), refcon_(refcon), mainLoop_(mainLoop), log_(log) {}

void MacNotificationRegistrations::add(AXUIElementRef element, AccessibilityNotification notification) {
    request({Verb::add, Owned<AXUIElementRef>::retaining(element), notification});
}

void MacNotificationRegistrations::remove(AXUIElementRef element, AccessibilityNotification notification) {
    request({Verb::remove, Owned<AXUIElementRef>::retaining(element), notification});
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
    const auto name = cf::makeString(systemName(request.notification));
    if (!name) {
        return true;
    }
    accessibility::setMessagingTimeout(request.element.get(), messagingTimeout);
    const bool isRemoval = request.verb == Verb::remove;
    const AXError error = isRemoval ? AXObserverRemoveNotification(observer_, request.element.get(), name.get())
                                    : AXObserverAddNotification(observer_, request.element.get(), name.get(), refcon_);
    // The registrations of a closed window are gone with it, and a registration that was not answered in time may still
    // have been made.
    const bool isDone = error == kAXErrorSuccess ||
                        (isRemoval ? error == kAXErrorInvalidUIElement || error == kAXErrorNotificationNotRegistered
                                   : error == kAXErrorNotificationAlreadyRegistered);
    if (!isDone) {
        log_.write(
            LogLevel::debug, "windows",
            accessibility::describe(systemName(request.notification), error) + " for pid " + std::to_string(pid_));
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
            // To the end of the queue: if it is never answered, the others still get their turn.
            waiting_.push_back(std::move(request));
        }
    }
    if (hangs_ && pause_ < longestPause) {
        waitFor(pause_ * 2);
    }
}

/// Whether the request undoes one that still waits. Neither is sent then.
bool MacNotificationRegistrations::cancelsWaiting(const Request& request) {
    return std::erase_if(waiting_, [&](const Request& each) {
               return each.verb != request.verb && each.notification == request.notification &&
                      CFEqual(each.element.get(), request.element.get());
           }) > 0;
}

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
    // In the next turn, so that the registrations of this one come first. Notifications that arrive in between wait for
    // the source.
    mainLoop_.post([watch = std::weak_ptr<Watch>(watch_)] {
        if (const auto current = watch.lock()) {
            current->addSource();
        }
    });
}

MacAccessibilityObserver::~MacAccessibilityObserver() {
    detachFromMainLoop();
    // The system may be delivering several notifications, the first of which destroyed this object. The observer and
    // its `refcon` stay until the others have been delivered.
    mainLoop_.post([watch = std::move(watch_)] {});
}

void MacAccessibilityObserver::addApplicationNotification(AccessibilityNotification notification) {
    registrations_.add(application_.get(), notification);
}

void MacAccessibilityObserver::addWindowNotification(const AXElementRef& window,
                                                     AccessibilityNotification notification) {
    if (const AXUIElementRef element = MacElement::elementOf(window)) {
        registrations_.add(element, notification);
    }
}

void MacAccessibilityObserver::removeWindowNotification(const AXElementRef& window,
                                                        AccessibilityNotification notification) {
    if (const AXUIElementRef element = MacElement::elementOf(window)) {
        registrations_.remove(element, notification);
    }
}

void MacAccessibilityObserver::detachFromMainLoop() {
    registrations_.forgetWaiting();
    watch_->removeSource();
}

void MacAccessibilityObserver::receive(AXObserverRef /*observer*/, AXUIElementRef /*element*/, CFStringRef name,
                                       void* refcon) {
    const auto* const watch = static_cast<const Watch*>(refcon);
    const auto text = cf::string(name);
    const auto notification = text ? notificationNamed(*text) : std::nullopt;
    if (watch == nullptr || watch->source != Watch::Source::onMainLoop || !notification) {
        return;
    }
    // A copy: the handler may destroy the observer.
    const auto handler = watch->handler;
    handler(*notification);
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

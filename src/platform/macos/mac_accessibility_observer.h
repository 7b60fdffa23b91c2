#pragma once

#include <ApplicationServices/ApplicationServices.h>

#include <memory>

#include "platform/accessibility_observers.h"
#include "platform/macos/mac_notification_registrations.h"
#include "platform/macos/owned.h"

namespace ferrowyn {

class Log;
class MainLoop;

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

    void addApplicationNotification(std::string_view notification) override;
    void addWindowNotification(const AXElementRef& window, std::string_view notification) override;
    void removeWindowNotification(const AXElementRef& window, std::string_view notification) override;
    void detachFromMainLoop() override;

private:
    /// What the system's callback is given.
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

    static void receive(AXObserverRef observer, AXUIElementRef element, CFStringRef notification, void* refcon);

    MainLoop& mainLoop_;
    Owned<AXUIElementRef> application_;
    /// Shared with the main loop for one turn after this object's end: see the destructor.
    std::shared_ptr<Watch> watch_;
    MacNotificationRegistrations registrations_;
};

}  // namespace ferrowyn

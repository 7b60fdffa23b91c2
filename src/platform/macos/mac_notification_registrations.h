#pragma once

#include <ApplicationServices/ApplicationServices.h>

#include <deque>
#include <string>
#include <string_view>

#include "core/app_window.h"
#include "core/published.h"
#include "platform/macos/owned.h"
#include "platform/main_loop.h"

namespace ferrowyn {

class Log;

/// What one application is asked to notify an observer of. To ask is a message to the application, for whose answer the
/// main thread waits: one that hangs is waited for once, and what it was not told waits for a later turn. Main thread.
class MacNotificationRegistrations {
public:
    /// The observer, what its callback is given, the loop and the log outlive this.
    MacNotificationRegistrations(Pid pid, AXObserverRef observer, void* refcon, MainLoop& mainLoop, Log& log);
    MacNotificationRegistrations(const MacNotificationRegistrations&) = delete;
    MacNotificationRegistrations& operator=(const MacNotificationRegistrations&) = delete;

    void add(AXUIElementRef element, std::string_view notification);
    void remove(AXUIElementRef element, std::string_view notification);
    /// Sends nothing of what still waits.
    void forgetWaiting();

    static constexpr Seconds messagingTimeout{0.5};
    /// Each pause is twice as long as the one before. After the longest the application is left alone until a window
    /// comes that is to be watched: windows are only found in applications that answer.
    static constexpr Seconds firstPause{1.0};
    static constexpr Seconds longestPause{128.0};

private:
    enum class Verb { add, remove };
    struct Request {
        Verb verb;
        Owned<AXUIElementRef> element;
        std::string notification;
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

}  // namespace ferrowyn

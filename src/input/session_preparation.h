#pragma once

#include <functional>
#include <vector>

#include "core/posted_work.h"
#include "core/published.h"
#include "platform/main_loop.h"

namespace ferrowyn {

class AccessibilityAuthorizer;
class FavouritesStore;
class Preferences;
class WindowIndex;
struct Platform;

/// Asks for the first frame of the next session to be drawn ahead of the key press, whenever something that this frame
/// shows has changed; several changes in one turn of the loop are one request. Owned by the controller. Main thread.
class SessionPreparation {
public:
    /// Drawing the next first frame would get in the way of the activation that a session ends with, and would show the
    /// order before it: the new order asks for it anyway, and this only after a session that has changed nothing.
    static constexpr Seconds delayAfterSession{0.1};

    /// What the first frame shows, beside the desktop itself. All outlive this object.
    struct Sources {
        const WindowIndex& windowIndex;
        const AccessibilityAuthorizer& authorizer;
        const FavouritesStore& favourites;
        const Preferences& preferences;
    };

    /// Asks for a first preparation. `prepare` is called in a task of its own.
    SessionPreparation(const Platform& platform, const Sources& sources, std::function<void()> prepare);

    void request() { preparation_.request(); }
    void requestAfterSession();

private:
    void observe(const Platform& platform, const Sources& sources);

    MainLoop& mainLoop_;
    CoalescedTask preparation_;
    Subscription delayed_;
    std::vector<Subscription> subscriptions_;
};

/// Ends a session that no command has reached for half a minute: longer than anybody looks at a list, it only guards
/// against a modifier release that got lost. Owned by the controller. Main thread.
class SessionWatchdog {
public:
    static constexpr Seconds interval{30.0};

    SessionWatchdog(MainLoop& mainLoop, std::function<void()> onIdle)
        : mainLoop_(mainLoop), onIdle_(std::move(onIdle)) {}

    /// Begins to wait, anew if it waits already.
    void restart() { timer_ = mainLoop_.after(interval, onIdle_); }
    void stop() { timer_.reset(); }

private:
    MainLoop& mainLoop_;
    std::function<void()> onIdle_;
    Subscription timer_;
};

}  // namespace ferrowyn

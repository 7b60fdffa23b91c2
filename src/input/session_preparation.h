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
    /// Delays the drawing after a session, so that it does not slow the activation. A changed order of the windows asks
    /// for the frame itself; this one is for a session that changed nothing.
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

}  // namespace ferrowyn

#pragma once

#include <functional>
#include <optional>
#include <string>

#include "core/app_window.h"
#include "core/posted_work.h"
#include "core/published.h"
#include "platform/main_loop.h"

namespace ferrowyn {

enum class ActivationState;
struct Platform;
class Log;
class WindowControl;
class Workspace;

/// Brings one chosen window to the front and gives it the keyboard, then checks with growing pauses whether that
/// happened, and tries again when it did not. One activation at a time: a new one ends the previous one silently, and
/// so does a later choice that is made elsewhere. Main thread; between its steps the loop runs.
class WindowActivator {
public:
    static constexpr int maximumAttempts = 4;
    static constexpr Seconds initialVerificationDelay{0.12};

    explicit WindowActivator(const Platform& platform);
    WindowActivator(const WindowActivator&) = delete;
    WindowActivator& operator=(const WindowActivator&) = delete;

    /// Ends the running activation and starts this one as a task on the main loop: an application that does not answer
    /// holds up nothing of what the caller does. Returns at once.
    void activate(const AppWindow& window);

    /// The user switched to this window, whether or not its activation could be confirmed. Not called when something
    /// else was chosen meanwhile. Set by the owner.
    std::function<void(const AppWindow&)> onActivated;
    /// Called before `onActivated` if the window's state could be read and the window was not the active one before:
    /// whether it is active now, and the application that was to get the keyboard. Set by the owner.
    std::function<void(bool isConfirmed, Pid application)> onVerified;

private:
    struct Activation {
        AppWindow window;
        std::string applicationName;
        /// The application that gets the keyboard: the window's, or that of the dialog that blocks the window.
        Pid pid = 0;
        /// What gets the keyboard: the dialog that blocks the window, or the window's element, given with it or looked
        /// up.
        std::optional<AXElementRef> element;
        /// It was the active one before anything was asked.
        bool wasActive = false;
        /// At the last check the keyboard had gone to nobody, and nothing was asked for that reason.
        bool isLost = false;
        int lookups = 0;
        int checks = 0;
        Seconds delay = initialVerificationDelay;
    };

    void begin(const AppWindow& window);
    void lookUpElement();
    void raiseFirst();
    void raise();
    void scheduleVerification();
    void verify();
    /// Whether the chosen window, or the dialog that blocks it, has the keyboard.
    [[nodiscard]] ActivationState state() const;
    void reportVerification(bool isConfirmed) const;
    void finish();

    MainLoop& mainLoop_;
    Log& log_;
    Workspace& workspace_;
    WindowControl& control_;
    /// Present while an activation has been posted and not begun; dropping it cancels that.
    std::optional<LifeToken> posted_;
    /// The running activation; absent when idle.
    std::optional<Activation> activation_;
    /// The pause that the running activation is in; dropping it is what cancels an activation.
    Subscription pause_;
};

}  // namespace ferrowyn

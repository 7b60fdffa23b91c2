#pragma once

#include <functional>
#include <memory>

#include "app/program_request.h"
#include "app/user_interface.h"
#include "core/posted_work.h"
#include "core/published.h"
#include "platform/workspace.h"

namespace ferrowyn {

struct Platform;
class AppServices;
class StatusItemController;

/// Handles the program's launch, its reopening, its end and the requests from outside. Owns the services, the utility
/// windows and the status item. Main thread. The platform and the user interface outlive it.
class AppDelegate {
public:
    AppDelegate(const Platform& platform, UserInterface& userInterface);
    ~AppDelegate();
    AppDelegate(const AppDelegate&) = delete;
    AppDelegate& operator=(const AppDelegate&) = delete;

    /// Called once. Before it, a request for the settings shows a progress window, and nothing else below has an
    /// effect.
    void applicationDidFinishLaunching();
    /// The user opened the program while it runs. Returns whether the desktop may also do its usual action.
    bool applicationShouldHandleReopen(bool hasVisibleWindows);
    void applicationWillTerminate();

    void perform(ProgramRequest request);
    /// Shows the program's page that replaces a page of the system's settings; false when there is none for this
    /// page.
    bool showSettingsPage(SettingsPage page);

    /// Null before the launch.
    [[nodiscard]] AppServices* services() { return services_.get(); }

private:
    void makeWindows();
    void makeStatusItem();
    void welcomeWithoutTrust();
    void openSwitcher();
    /// Returns a callback that does nothing once this object is destroyed.
    [[nodiscard]] std::function<void()> weakly(void (AppDelegate::*action)());
    void showOnboarding();
    void closeOnboarding();
    void showSettings();
    void showAwaitedSettings();
    void showAbout();
    void closeAbout();

    const Platform& platform_;
    UserInterface& userInterface_;
    std::unique_ptr<AppServices> services_;
    std::unique_ptr<OnDemandWindow> onboarding_;
    std::unique_ptr<OnDemandWindow> settings_;
    std::unique_ptr<OnDemandWindow> about_;
    /// Shown when the settings are requested before the launch.
    std::unique_ptr<OnDemandWindow> progress_;
    std::unique_ptr<StatusItem> statusItem_;
    std::unique_ptr<StatusItemController> statusItemController_;
    Subscription firstWindowList_;
    Subscription trustChange_;
    LifeToken life_;
};

}  // namespace ferrowyn

#pragma once

#include <functional>
#include <memory>
#include <string_view>

#include "app/program_request.h"
#include "app/user_interface.h"
#include "core/posted_work.h"
#include "core/published.h"

namespace ferrowyn {

struct Platform;
class AppServices;
class StatusItemController;

/// Carries out what happens to the program as a whole: its launch, being opened again, its end, and what is asked of it
/// from outside. Owns the services and everything that the user sees of them. Main thread. The platform and the user
/// interface outlive it.
class AppDelegate {
public:
    AppDelegate(const Platform& platform, UserInterface& userInterface);
    ~AppDelegate();
    AppDelegate(const AppDelegate&) = delete;
    AppDelegate& operator=(const AppDelegate&) = delete;

    /// Once. Before it, settings that are asked for show that they are on their way; nothing else below has an effect.
    void applicationDidFinishLaunching();
    /// The user opens the program while it runs. The answer is whether the desktop may do what it does then, too.
    bool applicationShouldHandleReopen(bool hasVisibleWindows);
    void applicationWillTerminate();

    void perform(ProgramRequest request);
    /// Shows the program's own page in the place of one of the system's settings, where the desktop has no such
    /// settings; false when there is none for this address.
    bool showSettingsPage(std::string_view url);

    /// Null before the launch.
    [[nodiscard]] AppServices* services() { return services_.get(); }

private:
    void makeWindows();
    void makeStatusItem();
    void welcomeWithoutTrust();
    void openSwitcher();
    /// For callbacks of those that may outlive this object: they do nothing then.
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
    /// In the place of the settings that were asked for before the launch.
    std::unique_ptr<OnDemandWindow> progress_;
    std::unique_ptr<StatusItem> statusItem_;
    std::unique_ptr<StatusItemController> statusItemController_;
    Subscription firstWindowList_;
    Subscription trustChange_;
    LifeToken life_;
};

}  // namespace ferrowyn

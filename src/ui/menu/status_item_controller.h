#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "core/posted_work.h"
#include "core/published.h"
#include "platform/status_item.h"
#include "ui/menu/status_menu.h"

namespace ferrowyn {

struct Platform;
struct TextTable;
class AppServices;
class Application;
class MainLoop;

/// Shows on the status item whether the shortcut works, and offers the menu. It is the program's only permanent user
/// interface. Main thread. All that it is given outlives it.
class StatusItemController {
public:
    /// Each may be empty.
    struct Actions {
        std::function<void()> onOpenSettings;
        std::function<void()> onOpenOnboarding;
        std::function<void()> onOpenAbout;
    };

    StatusItemController(const Platform& platform, StatusItem& statusItem, AppServices& services, Actions actions,
                         Translator translate = &Phrase::untranslated);

    // To be called once, in this order.
    void configureButton();
    /// Builds the whole menu each time.
    void buildMenu();
    /// From now on the button and the menu follow the services. The window count (once there are windows), the state of
    /// the login item and the keys of the shortcut are updated only with the next change of something else.
    void followServices();

private:
    void perform(const MenuRow& row);
    void retryInput();
    void selectLayout(std::string_view representedValue);
    void toggleLaunchAtLogin();

    Application& application_;
    const TextTable& texts_;
    std::string applicationName_;
    StatusItem& statusItem_;
    AppServices& services_;
    Actions actions_;
    Translator translate_;
    /// Rebuilds the button and the menu once for all changes of one turn of the loop.
    CoalescedTask update_;
    std::vector<Subscription> cancellables_;
    /// For the status item, which outlives this.
    LifeToken life_;
};

}  // namespace ferrowyn

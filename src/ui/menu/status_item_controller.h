#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "core/published.h"
#include "platform/status_item.h"
#include "ui/menu/status_menu.h"

namespace ferrowyn {

struct Platform;
struct TextTable;
class AppServices;
class Application;
class MainLoop;

/// The program's only permanent user interface: shows on the status item how the shortcut is doing, and offers what can
/// be done about it and with the program. Main thread. Everything that it is given outlives it.
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

    // The set-up, in this order.
    void configureButton();
    /// The whole menu is made anew each time.
    void buildMenu();
    /// From now on, the button and the menu follow what they show. The window count, once there are windows, the login
    /// item's state and the shortcut's keys wait for the next rebuild.
    void followServices();

private:
    void perform(const MenuRow& row);
    void retryInput();
    void selectLayout(std::string_view representedValue);
    void toggleLaunchAtLogin();
    /// One rebuild, in a task of its own, for whatever changes meanwhile.
    void scheduleUpdate();

    MainLoop& mainLoop_;
    Application& application_;
    const TextTable& texts_;
    std::string applicationName_;
    StatusItem& statusItem_;
    AppServices& services_;
    Actions actions_;
    Translator translate_;
    bool isUpdateScheduled_ = false;
    std::vector<Subscription> cancellables_;
    /// Held weakly by what waits on the loop and by the status item, which outlive this.
    std::shared_ptr<const bool> isAlive_ = std::make_shared<const bool>(true);
};

}  // namespace ferrowyn

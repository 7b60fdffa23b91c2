#include "platform/macos/mac_platform.h"

#include <utility>

#include "core/texts.h"
#include "platform/macos/mac_accessibility_notifications.h"
#include "platform/macos/mac_accessibility_observers.h"
#include "platform/macos/mac_application.h"
#include "platform/macos/mac_background_work.h"
#include "platform/macos/mac_element.h"
#include "platform/macos/mac_keyboard_tap.h"
#include "platform/macos/mac_panel.h"
#include "platform/macos/mac_screens.h"
#include "platform/macos/mac_system_looks.h"
#include "platform/macos/mac_system_services.h"
#include "platform/macos/mac_trust.h"
#include "platform/macos/mac_window_control.h"
#include "platform/macos/mac_window_inventory.h"
#include "platform/macos/mac_workspace.h"

namespace ferrowyn {

/// In the order in which they need each other.
struct MacPlatform::Parts {
    explicit Parts(MacPlatformFoundation foundation);

    MacActivity activity;
    MacBackgroundWork backgroundWork;
    MacWindowNumberLookup windowNumbers;
    MacRunningApplicationControl applications;
    MacApplication application;
    MacWorkspace workspace;
    MacUserDefaults userDefaults;
    MacWindowInventory inventory;
    MacAccessibilityObservers observers;
    MacWindowControl control;
    MacTrust trust;
    MacKeyboardTaps keyboardTaps;
    MacScreens screens;
    MacPointer pointer;
    MacPanel panel;
    MacIconSource icons;
    MacLoginItem loginItem;
    Platform platform;
};

MacPlatform::Parts::Parts(MacPlatformFoundation foundation)
    : backgroundWork(foundation.backgroundWork),
      inventory([this] { return workspace.runningApplications(); }, windowNumbers),
      observers(foundation.mainLoop, foundation.log),
      control(applications, windowNumbers, foundation.log),
      trust(observeAccessibilityDatabase),
      keyboardTaps(inAutoreleasePool),
      panel(std::move(foundation.hostWidget), foundation.panelCornerRadius),
      platform{.mainLoop = foundation.mainLoop,
               .backgroundWork = backgroundWork,
               .log = foundation.log,
               .userDefaults = userDefaults,
               .application = application,
               .workspace = workspace,
               .windowInventory = inventory,
               .accessibilityObservers = observers,
               .windowControl = control,
               .trust = trust,
               .keyboardTaps = keyboardTaps,
               .screens = screens,
               .pointer = pointer,
               .panel = panel,
               .icons = icons,
               .httpClient = foundation.httpClient,
               .loginItem = loginItem,
               .texts = macTexts()} {}

MacPlatform::MacPlatform(MacPlatformFoundation foundation) : parts_(std::make_unique<Parts>(std::move(foundation))) {}
MacPlatform::~MacPlatform() = default;

const Platform& MacPlatform::platform() const {
    return parts_->platform;
}

}  // namespace ferrowyn

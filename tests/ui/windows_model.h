#pragma once

#include <memory>
#include <string>
#include <vector>

#include "core/texts.h"
#include "platform/platform.h"
#include "platform/simulated/simulated_desktop.h"
#include "services/accessibility_authorizer.h"
#include "services/favourites_store.h"
#include "services/icon_provider.h"
#include "services/launch_at_login_service.h"
#include "services/preferences.h"
#include "services/update_checker.h"
#include "tests/ui/panel_model.h"
#include "ui/windows/settings_model.h"

namespace ferrowyn::test {

/// The services of the settings, setup and about windows on a simulated desktop, with the texts of one of the systems
/// and lettered tiles for icons.
class WindowsModel {
public:
    explicit WindowsModel(
        const TextTable& texts = macTexts(),
        const std::function<void(SimulatedDesktop&)>& arrange = [](SimulatedDesktop&) {});

    /// The same platform with the simulated desktop's own icons, which records what is loaded.
    [[nodiscard]] Platform platformWithRecordedIcons();
    /// Pins applications whose identifiers are given, in this order.
    void pin(const std::vector<std::string>& identifiers);

    SimulatedDesktop desktop;
    TileIcons tiles;
    Platform platform;
    Preferences preferences;
    AccessibilityAuthorizer authorizer;
    LaunchAtLoginService launchAtLogin;
    FavouritesStore favourites;
    UpdateChecker updates;
    IconProvider icons;
    SettingsServices services{preferences, authorizer, launchAtLogin, favourites, updates, icons};
};

}  // namespace ferrowyn::test

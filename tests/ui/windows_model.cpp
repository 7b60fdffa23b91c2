#include "tests/ui/windows_model.h"

namespace ferrowyn::test {

namespace {

Platform withTexts(const Platform& platform, IconSource& icons, const TextTable& texts) {
    return {
        .mainLoop = platform.mainLoop,
        .backgroundWork = platform.backgroundWork,
        .log = platform.log,
        .userDefaults = platform.userDefaults,
        .application = platform.application,
        .workspace = platform.workspace,
        .windowInventory = platform.windowInventory,
        .accessibilityObservers = platform.accessibilityObservers,
        .windowControl = platform.windowControl,
        .trust = platform.trust,
        .eventTaps = platform.eventTaps,
        .screens = platform.screens,
        .pointer = platform.pointer,
        .panel = platform.panel,
        .icons = icons,
        .httpClient = platform.httpClient,
        .loginItem = platform.loginItem,
        .texts = texts,
    };
}

const Platform& arranged(SimulatedDesktop& desktop, const std::function<void(SimulatedDesktop&)>& arrange) {
    arrange(desktop);
    return desktop.platform();
}

}  // namespace

WindowsModel::WindowsModel(const TextTable& texts, const std::function<void(SimulatedDesktop&)>& arrange)
    : platform(withTexts(arranged(desktop, arrange), tiles, texts)),
      preferences(platform.userDefaults),
      authorizer(platform),
      launchAtLogin(platform),
      favourites(platform.userDefaults, platform.workspace),
      updates(platform, AppVersion("1.0")),
      icons(platform.icons, platform.workspace) {}

Platform WindowsModel::platformWithRecordedIcons() {
    return withTexts(desktop.platform(), desktop.platform().icons, platform.texts);
}

void WindowsModel::pin(const std::vector<std::string>& identifiers) {
    for (const auto& identifier : identifiers) {
        AppWindow window;
        window.bundleIdentifier = identifier;
        favourites.toggle(window);
    }
}

}  // namespace ferrowyn::test

#include "tests/ui/windows_model.h"

#include "platform/platform.h"

namespace ferrowyn::test {

namespace {

const Platform& arranged(SimulatedDesktop& desktop, const std::function<void(SimulatedDesktop&)>& arrange) {
    arrange(desktop);
    return desktop.platform();
}

}  // namespace

WindowsModel::WindowsModel(const TextTable& texts, const std::function<void(SimulatedDesktop&)>& arrange)
    : platform(replacedIn(arranged(desktop, arrange), {.icons = &tiles, .texts = &texts})),
      preferences(platform.userDefaults),
      authorizer(platform),
      launchAtLogin(platform),
      favourites(platform.userDefaults, platform.workspace),
      updates(platform, AppVersion("1.0")),
      icons(platform.icons, platform.workspace) {}

Platform WindowsModel::platformWithRecordedIcons() {
    return replacedIn(desktop.platform(), {.texts = &platform.texts});
}

void WindowsModel::pin(const std::vector<std::string>& identifiers) {
    for (const auto& identifier : identifiers) {
        AppWindow window;
        window.bundleIdentifier = identifier;
        favourites.toggle(window);
    }
}

}  // namespace ferrowyn::test

#include "tests/ui/interface_models.h"

#include <utility>

#include "input/panel_geometry.h"
#include "platform/qt/qt_icons.h"

namespace ferrowyn::test {

void MemoryDefaults::registerDefaults(const std::map<std::string, DefaultsValue>& defaults) {
    registered_.insert(defaults.begin(), defaults.end());
}

std::optional<DefaultsValue> MemoryDefaults::value(std::string_view key) const {
    for (const auto* const values : {&values_, &registered_}) {
        if (const auto found = values->find(key); found != values->end()) {
            return found->second;
        }
    }
    return std::nullopt;
}

void MemoryDefaults::set(std::string_view key, DefaultsValue value) {
    values_.insert_or_assign(std::string(key), std::move(value));
}

std::shared_ptr<const IconImage> TileIcons::genericApplicationIcon(std::string_view name) {
    return std::make_shared<LetteredTile>(name);
}

PanelModel::PanelModel()
    : viewModel(
          preferences.sessionSettings(), icons, favourites, [] { return std::optional<Pid>(); },
          [](const std::function<void()>& task) { task(); }) {
    viewModel.bind(published, status);
}

AppWindow PanelModel::window(WindowId id, Pid pid, std::string appName, std::string title) {
    AppWindow window;
    window.id = id;
    window.pid = pid;
    window.bundleIdentifier = appName;
    window.appName = std::move(appName);
    window.title = std::move(title);
    window.isOnActiveSpace = true;
    return window;
}

std::vector<AppWindow> PanelModel::windows(int count, int applications) {
    std::vector<AppWindow> list;
    for (int number = 1; number <= count; ++number) {
        const int application = (number - 1) % applications + 1;
        list.push_back(window(static_cast<WindowId>(number), application, "App " + std::to_string(application),
                              "Window " + std::to_string(number)));
    }
    return list;
}

Size PanelModel::panelSize() const {
    const panel_geometry::Style style{preferences.layout.get(), preferences.maximumVisibleRows.get(),
                                      preferences.showShortcutHints.get()};
    const int rows = viewModel.isAccessibilityTrusted.get() ? static_cast<int>(viewModel.rows.get().size()) : 0;
    return {panel_geometry::contentWidth(style.layout),
            panel_geometry::contentHeight(style, rows, viewModel.groupCount())};
}

namespace {

const Platform& arranged(SimulatedDesktop& desktop, const std::function<void(SimulatedDesktop&)>& arrange) {
    arrange(desktop);
    return desktop.platform();
}

}  // namespace

UtilityModel::UtilityModel(const TextTable& texts, const std::function<void(SimulatedDesktop&)>& arrange)
    : platform(replacedIn(arranged(desktop, arrange), {.icons = &tiles, .texts = &texts})),
      preferences(platform.userDefaults),
      authorizer(platform),
      launchAtLogin(platform),
      favourites(platform.userDefaults, platform.workspace),
      updates(platform, AppVersion("1.0")),
      icons(platform.icons, platform.workspace) {}

Platform UtilityModel::platformWithRecordedIcons() {
    return replacedIn(desktop.platform(), {.texts = &platform.texts});
}

void UtilityModel::pin(const std::vector<std::string>& identifiers) {
    for (const auto& identifier : identifiers) {
        AppWindow window;
        window.bundleIdentifier = identifier;
        favourites.toggle(window);
    }
}

}  // namespace ferrowyn::test

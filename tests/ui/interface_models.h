#pragma once

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "core/geometry.h"
#include "core/switcher_view_model.h"
#include "core/texts.h"
#include "platform/icon_source.h"
#include "platform/platform.h"
#include "platform/simulated/simulated_desktop.h"
#include "platform/user_defaults.h"
#include "platform/workspace.h"
#include "services/accessibility_authorizer.h"
#include "services/favourites_store.h"
#include "services/icon_provider.h"
#include "services/launch_at_login_service.h"
#include "services/preferences.h"
#include "services/update_checker.h"
#include "ui/windows/settings_model.h"

namespace ferrowyn::test {

/// The settings, kept in memory.
class MemoryDefaults final : public UserDefaults {
public:
    void registerDefaults(const std::map<std::string, DefaultsValue>& defaults) override;
    [[nodiscard]] std::optional<DefaultsValue> value(std::string_view key) const override;
    void set(std::string_view key, DefaultsValue value) override;

private:
    std::map<std::string, DefaultsValue, std::less<>> values_;
    std::map<std::string, DefaultsValue, std::less<>> registered_;
};

/// A workspace in which nothing runs.
class QuietWorkspace final : public Workspace {
public:
    [[nodiscard]] std::vector<RunningApplication> runningApplications() const override { return {}; }
    [[nodiscard]] std::optional<RunningApplication> runningApplication(Pid /*pid*/) const override { return {}; }
    [[nodiscard]] std::optional<Pid> frontmostPid() const override { return {}; }
    [[nodiscard]] Subscription observe(EventHandler /*handler*/) override { return Subscription(); }
    [[nodiscard]] std::optional<std::string> installedApplicationName(std::string_view /*id*/) const override {
        return {};
    }
    [[nodiscard]] std::optional<std::string> installedApplicationPath(std::string_view /*id*/) const override {
        return {};
    }
    bool open(std::string_view /*url*/) override { return false; }
    bool openSettings(SettingsPage /*page*/) override { return false; }
};

/// Lettered tiles for every application; counts what was rendered.
class TileIcons final : public IconSource {
public:
    [[nodiscard]] std::shared_ptr<const IconImage> iconForFile(std::string_view /*path*/) override { return nullptr; }
    [[nodiscard]] std::shared_ptr<const IconImage> iconForProcess(Pid /*pid*/) override { return nullptr; }
    [[nodiscard]] std::shared_ptr<const IconImage> genericApplicationIcon(std::string_view name) override;
    [[nodiscard]] Subscription observeProcessIcons(std::function<void(Pid)> /*handler*/) override { return {}; }
};

class NamedFavourites final : public FavouriteApplications {
public:
    [[nodiscard]] const Published<std::vector<std::string>>& bundleIdentifiers() const override { return identifiers; }
    [[nodiscard]] std::vector<const AppWindow*> ordered(std::vector<const AppWindow*> windows) const override {
        return windows;
    }

    Published<std::vector<std::string>> identifiers;
};

/// A view model with everything around it, fed by hand.
class PanelModel {
public:
    PanelModel();

    /// A window on the active Space; the application's bundle identifier is its name.
    static AppWindow window(WindowId id, Pid pid, std::string appName, std::string title);
    /// `count` windows titled "Window 1" and so on, of `applications` applications in turn.
    static std::vector<AppWindow> windows(int count, int applications);

    void show(std::vector<AppWindow> list) { published.set(std::move(list)); }
    void setTrusted(bool isTrusted) {
        status.set(isTrusted ? AccessibilityStatus::trusted : AccessibilityStatus::notTrusted);
    }

    /// The size that the program gives the panel for what it shows now.
    [[nodiscard]] Size panelSize() const;

    Published<std::vector<AppWindow>> published;
    Published<AccessibilityStatus> status{AccessibilityStatus::trusted};
    MemoryDefaults defaults;
    Preferences preferences{defaults};
    NamedFavourites favourites;
    TileIcons tiles;
    QuietWorkspace workspace;
    IconProvider icons{tiles, workspace};
    SwitcherViewModel viewModel;
};

/// The services of the settings, setup and about windows on a simulated desktop, with the texts of one of the systems
/// and lettered tiles for icons.
class UtilityModel {
public:
    explicit UtilityModel(
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

#include "main/qt_user_interface.h"

#include <utility>

#include "app/app_services.h"
#include "core/texts.h"
#include "platform/platform.h"
#include "ui/common/translation.h"
#include "ui/panel/switcher_view.h"
#include "ui/windows/about_view.h"
#include "ui/windows/onboarding_view.h"
#include "ui/windows/settings_view.h"
#include "ui/windows/utility_window.h"

namespace ferrowyn {

namespace {

class HostedWindow final : public OnDemandWindow {
public:
    HostedWindow(Application& application, const UserInterface::WindowOptions& options,
                 const UtilityWindowController::WindowConfiguration& configure,
                 UtilityWindowController::ContentBuilder content)
        : controller_(application, options.title, options.isResizable, std::move(content), configure) {}

    void show() override { controller_.show(); }
    void close() override { controller_.close(); }

private:
    UtilityWindowController controller_;
};

}  // namespace

QtUserInterface::QtUserInterface(const Platform& platform, StatusItemFactory makeStatusItem, ReportMaker makeReport,
                                 WindowConfiguration configureWindow)
    : platform_(platform),
      makeStatusItem_(std::move(makeStatusItem)),
      makeReport_(std::move(makeReport)),
      configureWindow_(std::move(configureWindow)) {}

std::string QtUserInterface::translated(const Phrase& phrase) {
    return ferrowyn::translated(phrase).toStdString();
}

SwitcherContentFactory QtUserInterface::switcherContentFactory() {
    return ferrowyn::switcherContentFactory(platform_.texts);
}

std::unique_ptr<OnDemandWindow> QtUserInterface::makeOnboardingWindow(const WindowOptions& options,
                                                                      AppServices& services,
                                                                      std::function<void()> onDone) {
    return std::make_unique<HostedWindow>(
        platform_.application, options, configureWindow_, [this, &services, onDone = std::move(onDone)] {
            return std::make_unique<OnboardingView>(platform_, services.authorizer(), services.preferences(), onDone,
                                                    makeReport_);
        });
}

std::unique_ptr<OnDemandWindow> QtUserInterface::makeSettingsWindow(const WindowOptions& options,
                                                                    AppServices& services) {
    return std::make_unique<HostedWindow>(
        platform_.application, options, configureWindow_, [&platform = platform_, &services] {
            return std::make_unique<SettingsView>(platform, SettingsServices{.preferences = services.preferences(),
                                                                             .authorizer = services.authorizer(),
                                                                             .launchAtLogin = services.launchAtLogin(),
                                                                             .favourites = services.favourites(),
                                                                             .updates = services.updates(),
                                                                             .icons = services.iconProvider()});
        });
}

std::unique_ptr<OnDemandWindow> QtUserInterface::makeProgressWindow(const WindowOptions& options) {
    return std::make_unique<HostedWindow>(platform_.application, options, configureWindow_,
                                          [] { return std::make_unique<ProgressView>(); });
}

std::unique_ptr<OnDemandWindow> QtUserInterface::makeAboutWindow(const WindowOptions& options,
                                                                 std::function<void()> onClose) {
    return std::make_unique<HostedWindow>(platform_.application, options, configureWindow_,
                                          [&platform = platform_, onClose = std::move(onClose)] {
                                              return std::make_unique<AboutView>(platform, onClose);
                                          });
}

}  // namespace ferrowyn

#pragma once

#include <functional>
#include <memory>
#include <string>

#include "app/utility_window.h"
#include "input/switcher_content.h"
#include "platform/status_item.h"

namespace ferrowyn {

class AppServices;

/// Makes what only the toolkit can make; the delegate owns it. The services outlive all of it. Main thread.
class UserInterface {
public:
    struct WindowOptions {
        std::string title;
        bool isResizable = false;
    };

    virtual ~UserInterface() = default;

    [[nodiscard]] virtual SwitcherContentFactory switcherContentFactory() = 0;
    [[nodiscard]] virtual std::unique_ptr<UtilityWindow> makeOnboardingWindow(const WindowOptions& options,
                                                                              AppServices& services,
                                                                              std::function<void()> onDone) = 0;
    [[nodiscard]] virtual std::unique_ptr<UtilityWindow> makeSettingsWindow(const WindowOptions& options,
                                                                            AppServices& services) = 0;
    [[nodiscard]] virtual std::unique_ptr<UtilityWindow> makeAboutWindow(const WindowOptions& options,
                                                                         std::function<void()> onClose) = 0;
    [[nodiscard]] virtual std::unique_ptr<StatusItem> makeStatusItem() = 0;
};

}  // namespace ferrowyn

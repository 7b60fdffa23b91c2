#pragma once

#include <functional>
#include <memory>
#include <string>

#include "core/texts.h"
#include "input/switcher_panel.h"
#include "platform/status_item.h"

namespace ferrowyn {

class AppServices;

/// A utility window: one of the program's own, such as the settings. It is created when it is first shown, and kept
/// after that. Main thread.
class OnDemandWindow {
public:
    virtual ~OnDemandWindow() = default;

    /// Shows it in front with the keyboard.
    virtual void show() = 0;
    virtual void close() = 0;
};

/// Makes the objects that need the toolkit. AppDelegate owns them, and the services outlive them. Main thread.
class UserInterface {
public:
    struct WindowOptions {
        Phrase title;
        bool isResizable = false;
    };

    virtual ~UserInterface() = default;

    /// The text in the user's language.
    [[nodiscard]] virtual std::string translated(const Phrase& phrase) = 0;
    [[nodiscard]] virtual SwitcherContentFactory switcherContentFactory() = 0;
    [[nodiscard]] virtual std::unique_ptr<OnDemandWindow> makeOnboardingWindow(const WindowOptions& options,
                                                                               AppServices& services,
                                                                               std::function<void()> onDone) = 0;
    [[nodiscard]] virtual std::unique_ptr<OnDemandWindow> makeSettingsWindow(const WindowOptions& options,
                                                                             AppServices& services) = 0;
    /// Shown in place of the settings window until there are services.
    [[nodiscard]] virtual std::unique_ptr<OnDemandWindow> makeProgressWindow(const WindowOptions& options) = 0;
    [[nodiscard]] virtual std::unique_ptr<OnDemandWindow> makeAboutWindow(const WindowOptions& options,
                                                                          std::function<void()> onClose) = 0;
    [[nodiscard]] virtual std::unique_ptr<StatusItem> makeStatusItem() = 0;
};

}  // namespace ferrowyn

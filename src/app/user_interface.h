#pragma once

#include <functional>
#include <memory>
#include <string>

#include "core/texts.h"
#include "input/switcher_panel.h"
#include "platform/status_item.h"

namespace ferrowyn {

class AppServices;

/// One of the program's ordinary windows: made when it is first shown, kept and shown again after that. Main thread.
class OnDemandWindow {
public:
    virtual ~OnDemandWindow() = default;

    /// Brings it to the front as the key window.
    virtual void show() = 0;
    virtual void close() = 0;
};

/// Makes what only the toolkit can make; the delegate owns it. The services outlive all of it. Main thread.
class UserInterface {
public:
    struct WindowOptions {
        Phrase title;
        bool isResizable = false;
    };

    virtual ~UserInterface() = default;

    /// Into the language of the user.
    [[nodiscard]] virtual std::string translated(const Phrase& phrase) = 0;
    [[nodiscard]] virtual SwitcherContentFactory switcherContentFactory() = 0;
    [[nodiscard]] virtual std::unique_ptr<OnDemandWindow> makeOnboardingWindow(const WindowOptions& options,
                                                                               AppServices& services,
                                                                               std::function<void()> onDone) = 0;
    [[nodiscard]] virtual std::unique_ptr<OnDemandWindow> makeSettingsWindow(const WindowOptions& options,
                                                                             AppServices& services) = 0;
    /// Stands for the settings window as long as there are no services.
    [[nodiscard]] virtual std::unique_ptr<OnDemandWindow> makeProgressWindow(const WindowOptions& options) = 0;
    [[nodiscard]] virtual std::unique_ptr<OnDemandWindow> makeAboutWindow(const WindowOptions& options,
                                                                          std::function<void()> onClose) = 0;
    [[nodiscard]] virtual std::unique_ptr<StatusItem> makeStatusItem() = 0;
};

}  // namespace ferrowyn

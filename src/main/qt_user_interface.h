#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "app/user_interface.h"

namespace ferrowyn {

struct Platform;

/// Makes the utility windows and the panel's content with Qt. Main thread. The platform outlives it and everything that
/// it makes.
class QtUserInterface final : public UserInterface {
public:
    using StatusItemFactory = std::function<std::unique_ptr<StatusItem>()>;

    /// Describes this desktop for a bug report. Called on a worker thread.
    using ReportMaker = std::function<std::string()>;

    /// See `UtilityWindowController`.
    using WindowConfiguration = std::function<int(std::uintptr_t windowNumber, bool isResizable)>;

    QtUserInterface(const Platform& platform, StatusItemFactory makeStatusItem, ReportMaker makeReport = nullptr,
                    WindowConfiguration configureWindow = nullptr);

    [[nodiscard]] std::string translated(const Phrase& phrase) override;
    [[nodiscard]] SwitcherContentFactory switcherContentFactory() override;
    [[nodiscard]] std::unique_ptr<OnDemandWindow> makeOnboardingWindow(const WindowOptions& options,
                                                                       AppServices& services,
                                                                       std::function<void()> onDone) override;
    [[nodiscard]] std::unique_ptr<OnDemandWindow> makeSettingsWindow(const WindowOptions& options,
                                                                     AppServices& services) override;
    [[nodiscard]] std::unique_ptr<OnDemandWindow> makeProgressWindow(const WindowOptions& options) override;
    [[nodiscard]] std::unique_ptr<OnDemandWindow> makeAboutWindow(const WindowOptions& options,
                                                                  std::function<void()> onClose) override;
    [[nodiscard]] std::unique_ptr<StatusItem> makeStatusItem() override { return makeStatusItem_(); }

private:
    const Platform& platform_;
    StatusItemFactory makeStatusItem_;
    ReportMaker makeReport_;
    WindowConfiguration configureWindow_;
};

}  // namespace ferrowyn

#pragma once

#include "core/app_window.h"
#include "platform/workspace.h"

namespace ferrowyn {

/// Running applications and what happens to them, the Spaces and the screens. Main thread, where the workspace posts
/// its notifications.
class MacWorkspace final : public Workspace {
public:
    /// Any thread. The list changes only while the main loop runs.
    [[nodiscard]] std::vector<RunningApplication> runningApplications() const override;
    [[nodiscard]] std::optional<RunningApplication> runningApplication(Pid pid) const override;
    [[nodiscard]] std::optional<Pid> frontmostPid() const override;
    [[nodiscard]] Subscription observe(EventHandler handler) override;
    [[nodiscard]] std::optional<std::string> installedApplicationName(std::string_view bundleIdentifier) const override;
    [[nodiscard]] std::optional<std::string> installedApplicationPath(std::string_view bundleIdentifier) const override;
    bool open(std::string_view url) override;
    bool openSettings(SettingsPage page) override;
};

/// The steps of an activation that are asked of the running application instead of Accessibility. A process that has
/// ended is neither hidden nor active, and requests to it do nothing. Main thread.
class MacApplicationControl {
public:
    virtual ~MacApplicationControl() = default;

    [[nodiscard]] virtual bool isHidden(Pid pid) const = 0;
    virtual void unhide(Pid pid) = 0;
    /// Activates the application with no options.
    virtual void activate(Pid pid) = 0;
    [[nodiscard]] virtual bool isActive(Pid pid) const = 0;
};

/// Asks NSRunningApplication. Main thread.
class MacRunningApplicationControl final : public MacApplicationControl {
public:
    [[nodiscard]] bool isHidden(Pid pid) const override;
    void unhide(Pid pid) override;
    void activate(Pid pid) override;
    [[nodiscard]] bool isActive(Pid pid) const override;
};

}  // namespace ferrowyn

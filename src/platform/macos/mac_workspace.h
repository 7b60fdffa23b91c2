#pragma once

#include "platform/workspace.h"

namespace ferrowyn {

/// Running applications and what happens to them, the Spaces and the screens. Main thread, where the workspace posts
/// its notifications.
class MacWorkspace final : public Workspace {
public:
    /// Any thread; it changes only when the main loop runs.
    [[nodiscard]] std::vector<RunningApplication> runningApplications() const override;
    [[nodiscard]] std::optional<RunningApplication> runningApplication(Pid pid) const override;
    [[nodiscard]] std::optional<Pid> frontmostPid() const override;
    [[nodiscard]] Subscription observe(EventHandler handler) override;
    [[nodiscard]] std::optional<std::string> installedApplicationName(std::string_view bundleIdentifier) const override;
    [[nodiscard]] std::optional<std::string> installedApplicationPath(std::string_view bundleIdentifier) const override;
    bool open(std::string_view url) override;
};

}  // namespace ferrowyn

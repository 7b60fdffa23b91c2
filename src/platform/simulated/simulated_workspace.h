#pragma once

#include <functional>
#include <map>
#include <string>
#include <vector>

#include "core/published.h"
#include "platform/simulated/simulated_window_model.h"
#include "platform/workspace.h"

namespace ferrowyn {

class SimulatedWorkspace final : public Workspace {
public:
    /// Addresses that are opened are added to `calls` as "open <url>".
    SimulatedWorkspace(const SimulatedWindowModel& model, std::vector<std::string>& calls)
        : model_(model), calls_(calls) {}

    [[nodiscard]] std::vector<RunningApplication> runningApplications() const override;
    [[nodiscard]] std::optional<RunningApplication> runningApplication(Pid pid) const override;
    [[nodiscard]] std::optional<Pid> frontmostPid() const override { return model_.frontmost; }
    [[nodiscard]] Subscription observe(EventHandler handler) override { return events_.subscribe(std::move(handler)); }
    [[nodiscard]] std::optional<std::string> installedApplicationName(std::string_view bundleIdentifier) const override;
    /// "/Applications/<identifier>.app" for one whose name was set.
    [[nodiscard]] std::optional<std::string> installedApplicationPath(std::string_view bundleIdentifier) const override;
    bool open(std::string_view url) override;

    void announce(const WorkspaceEvent& event) { events_.send(event); }
    void setInstalledApplicationName(std::string bundleIdentifier, std::optional<std::string> name);
    void setOpeningFails(bool fails) { openingFails_ = fails; }

private:
    const SimulatedWindowModel& model_;
    std::vector<std::string>& calls_;
    Subject<WorkspaceEvent> events_;
    std::map<std::string, std::optional<std::string>, std::less<>> installedNames_;
    bool openingFails_ = false;
};

}  // namespace ferrowyn

#include "platform/simulated/simulated_workspace.h"

#include <utility>

namespace ferrowyn {

std::vector<RunningApplication> SimulatedWorkspace::runningApplications() const {
    std::vector<RunningApplication> applications;
    applications.reserve(model_.apps.size());
    for (const auto& app : model_.apps) {
        applications.push_back(app.describe());
    }
    return applications;
}

std::optional<RunningApplication> SimulatedWorkspace::runningApplication(Pid pid) const {
    const auto* app = model_.app(pid);
    return app != nullptr ? std::optional(app->describe()) : std::nullopt;
}

std::optional<std::string> SimulatedWorkspace::installedApplicationName(std::string_view bundleIdentifier) const {
    const auto found = installedNames_.find(bundleIdentifier);
    return found != installedNames_.end() ? found->second : std::nullopt;
}

std::optional<std::string> SimulatedWorkspace::installedApplicationPath(std::string_view bundleIdentifier) const {
    const bool isInstalled = installedNames_.contains(bundleIdentifier);
    return isInstalled ? std::optional("/Applications/" + std::string(bundleIdentifier) + ".app") : std::nullopt;
}

bool SimulatedWorkspace::open(std::string_view url) {
    calls_.push_back("open " + std::string(url));
    return !openingFails_;
}

void SimulatedWorkspace::setInstalledApplicationName(std::string bundleIdentifier, std::optional<std::string> name) {
    installedNames_.insert_or_assign(std::move(bundleIdentifier), std::move(name));
}

}  // namespace ferrowyn

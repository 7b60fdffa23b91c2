#include "platform/x11/x11_workspace.h"

#include <utility>

namespace ferrowyn {

X11Workspace::X11Workspace(const X11DesktopMonitor& monitor, Desktop desktop)
    : model_(monitor.model()), desktop_(std::move(desktop)) {
    modelEvents_ = model_.workspaceEvents().subscribe([this](const WorkspaceEvent& event) { events_.send(event); });
    screenChanges_ = monitor.screenChanges().subscribe([this](bool) {
        events_.send({WorkspaceEvent::Kind::screenParametersDidChange, std::nullopt});
    });
}

std::vector<RunningApplication> X11Workspace::runningApplications() const {
    return model_.runningApplications();
}

std::optional<RunningApplication> X11Workspace::runningApplication(Pid pid) const {
    return model_.runningApplication(pid);
}

std::optional<Pid> X11Workspace::frontmostPid() const {
    return model_.frontmostPid();
}

Subscription X11Workspace::observe(EventHandler handler) {
    return events_.subscribe(std::move(handler));
}

std::optional<std::string> X11Workspace::installedApplicationName(std::string_view bundleIdentifier) const {
    return desktop_.installedApplicationName ? desktop_.installedApplicationName(bundleIdentifier) : std::nullopt;
}

std::optional<std::string> X11Workspace::installedApplicationPath(std::string_view bundleIdentifier) const {
    return desktop_.installedApplicationPath ? desktop_.installedApplicationPath(bundleIdentifier) : std::nullopt;
}

bool X11Workspace::open(std::string_view url) {
    if (url.starts_with("x-apple.systempreferences:")) {
        return desktop_.openSettingsPage && desktop_.openSettingsPage(url);
    }
    return desktop_.openAddress && desktop_.openAddress(url);
}

}  // namespace ferrowyn

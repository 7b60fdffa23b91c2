#include "platform/x11/x11_application.h"

#include <unistd.h>

#include <utility>

namespace ferrowyn {

Pid X11Application::ownPid() const {
    return getpid();
}

Subscription X11Application::observeDidBecomeActive(std::function<void()> handler) {
    return model_.workspaceEvents().subscribe([own = ownPid(), told = std::move(handler)](const WorkspaceEvent& event) {
        if (event.kind == WorkspaceEvent::Kind::didActivate && event.application && event.application->pid == own) {
            told();
        }
    });
}

}  // namespace ferrowyn

#pragma once

#include <functional>
#include <string>

#include "platform/workspace.h"
#include "tests/platform/contract/contract.h"

namespace ferrowyn::contract {

/// Applications that come, go and take turns in front. What happens is told inside `runUntil`.
class WorkspaceDriver {
public:
    virtual ~WorkspaceDriver() = default;

    virtual Workspace& workspace() = 0;
    /// With a window, so that every kind of desktop knows of it.
    virtual Pid launch(const std::string& name) = 0;
    virtual void quit(Pid application) = 0;
    virtual void activate(Pid application) = 0;
    [[nodiscard]] virtual bool runUntil(const std::function<bool()>& predicate) = 0;
};

class WorkspaceContract : public Contract<WorkspaceDriver> {
protected:
    using Kind = WorkspaceEvent::Kind;
    struct Event {
        Kind kind;
        std::optional<Pid> pid;
        friend bool operator==(const Event&, const Event&) = default;
    };

    [[nodiscard]] Subscription observe(std::vector<Event>& events);
    [[nodiscard]] bool runUntilSeen(const std::vector<Event>& events, const Event& event);
};

}  // namespace ferrowyn::contract

#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "core/posted_work.h"

namespace ferrowyn {

class BusThread;
class MainLoop;

/// The program as the desktop reaches it on the session bus: `org.freedesktop.Application` under the program's own
/// name. Main thread; the bus is spoken to on a thread of its own. Without a bus, or while another program has the name
/// (the user's Ferrowyn on another display), nobody reaches it this way, and it does without.
class ApplicationService {
public:
    struct Handlers {
        /// The user opens the program from a launcher.
        std::function<void()> activate;
        /// One of the actions that the desktop file offers.
        std::function<void(const std::string& action)> activateAction;
    };

    /// Asks for the name at once. `busAddress` as D-Bus addresses are written; nothing where there is no bus. Other
    /// actions than the given ones are refused on the bus.
    ApplicationService(MainLoop& mainLoop, const std::optional<std::string>& busAddress,
                       std::vector<std::string> actions, Handlers handlers);
    ~ApplicationService();
    ApplicationService(const ApplicationService&) = delete;
    ApplicationService& operator=(const ApplicationService&) = delete;

private:
    Handlers handlers_;
    /// Dies with this object, for what the listener has posted by then.
    LifeToken life_;
    std::unique_ptr<BusThread> thread_;
};

/// Has the program that runs carry out one of its actions; false when none has the name on this bus, or it does not
/// answer. Waits for the answer.
[[nodiscard]] bool activateActionOfRunningApplication(const std::string& busAddress, const std::string& action);

}  // namespace ferrowyn

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

/// Offers `org.freedesktop.Application` on the session bus under the program's name, so that the desktop can start and
/// call it. Main thread; the bus is used on a second thread. Without a bus, or while another program has the name (the
/// user's Ferrowyn on another display), the service is not offered and nothing else changes.
class ApplicationService {
public:
    struct Handlers {
        /// The user opens the program from a launcher.
        std::function<void()> activate;
        /// The user chooses one of the actions that the desktop file offers.
        std::function<void(const std::string& action)> activateAction;
    };

    /// Requests the name at once. `busAddress` is a D-Bus address, nullopt where there is no bus. A call with an action
    /// that is not in `actions` gets an error. The handlers run on the main loop.
    ApplicationService(MainLoop& mainLoop, const std::optional<std::string>& busAddress,
                       std::vector<std::string> actions, Handlers handlers);
    ~ApplicationService();
    ApplicationService(const ApplicationService&) = delete;
    ApplicationService& operator=(const ApplicationService&) = delete;

private:
    Handlers handlers_;
    /// What the bus thread posts may arrive after this object is destroyed.
    LifeToken life_;
    std::unique_ptr<BusThread> thread_;
};

/// Asks the running program to carry out one of its actions. Waits for the answer; false when no program has the name
/// on this bus, or it does not answer in time.
[[nodiscard]] bool activateActionOfRunningApplication(const std::string& busAddress, const std::string& action);

}  // namespace ferrowyn

#include "main/bus_requests.h"

#include <utility>
#include <vector>

#include "main/outside_requests.h"
#include "platform/linux/application_service.h"

namespace ferrowyn {

std::unique_ptr<ApplicationService> offerOnBus(MainLoop& mainLoop, OutsideRequests& requests,
                                               const std::optional<std::string>& busAddress) {
    std::vector<std::string> actions;
    actions.reserve(programRequestNames.size());
    for (const auto& [request, name] : programRequestNames) {
        actions.emplace_back(name);
    }
    return std::make_unique<ApplicationService>(
        mainLoop, busAddress, std::move(actions),
        ApplicationService::Handlers{.activate = [&requests] { requests.activate(); },
                                     .activateAction =
                                         [&requests](const std::string& action) {
                                             if (const auto request = programRequestNamed(action)) {
                                                 requests.perform(*request);
                                             }
                                         }});
}

}  // namespace ferrowyn

#pragma once

#include <memory>
#include <optional>
#include <string>

namespace ferrowyn {

class ApplicationService;
class MainLoop;
class OutsideRequests;

/// Lets the desktop send requests over the session bus, where there is one, while the result exists. The main loop and
/// the requests outlive the result.
[[nodiscard]] std::unique_ptr<ApplicationService> offerOnBus(MainLoop& mainLoop, OutsideRequests& requests,
                                                             const std::optional<std::string>& busAddress);

}  // namespace ferrowyn

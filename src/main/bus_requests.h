#pragma once

#include <memory>
#include <optional>
#include <string>

namespace ferrowyn {

class ApplicationService;
class MainLoop;
class OutsideRequests;

/// From now on, for as long as what is returned lives, the desktop can ask too, where there is a bus. Both outlive it.
[[nodiscard]] std::unique_ptr<ApplicationService> offerOnBus(MainLoop& mainLoop, OutsideRequests& requests,
                                                             const std::optional<std::string>& busAddress);

}  // namespace ferrowyn

#pragma once

#include <optional>
#include <string>

#include "core/app_window.h"
#include "platform/workspace.h"

namespace ferrowyn {

/// An application as a test launches it.
struct SimulatedAppState {
    Pid pid = 0;
    std::optional<std::string> bundleIdentifier;
    std::optional<std::string> localizedName;
    std::optional<std::string> bundleURL;
    ActivationPolicy activationPolicy = ActivationPolicy::regular;
};

}  // namespace ferrowyn

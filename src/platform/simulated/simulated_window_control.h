#pragma once

#include <string>
#include <vector>

#include "platform/simulated/simulated_window_model.h"
#include "platform/window_control.h"

namespace ferrowyn {

/// Records every request and carries it out as a cooperative application does, unless the application is hung or
/// ignores requests.
class SimulatedWindowControl final : public WindowControl {
public:
    SimulatedWindowControl(SimulatedWindowModel& model, SimulatedWindows& windows, std::vector<std::string>& calls)
        : model_(model), windows_(windows), calls_(calls) {}

    void activateApplication(Pid pid) override;
    void raiseAndFocus(const RaiseRequest& request) override;
    [[nodiscard]] ActivationState stateOf(Pid pid, const AXElementRef& window) const override;
    [[nodiscard]] std::optional<AXElementRef> findWindow(Pid pid, WindowId window) const override;

private:
    [[nodiscard]] bool obeys(Pid pid) const;
    /// The element's window; null when its application does not carry out requests.
    [[nodiscard]] const SimulatedWindowState* obedientWindow(const AXElementRef& element) const;
    void activate(Pid pid);
    void raise(const AXElementRef& element);

    SimulatedWindowModel& model_;
    SimulatedWindows& windows_;
    std::vector<std::string>& calls_;
};

}  // namespace ferrowyn

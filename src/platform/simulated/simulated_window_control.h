#pragma once

#include <string>
#include <vector>

#include "platform/simulated/simulated_window_model.h"
#include "platform/window_control.h"

namespace ferrowyn {

/// Records every call and carries it out as a cooperative application does, unless the application is hung or ignores
/// requests.
class SimulatedWindowControl final : public WindowControl {
public:
    SimulatedWindowControl(SimulatedWindowModel& model, SimulatedWindows& windows, std::vector<std::string>& calls)
        : model_(model), windows_(windows), calls_(calls) {}

    [[nodiscard]] bool isHidden(Pid pid) const override;
    void unhide(Pid pid) override;
    void activate(Pid pid) override;
    [[nodiscard]] bool isActive(Pid pid) const override;
    void setMessagingTimeout(Pid pid, Seconds timeout) override;
    void setMessagingTimeout(const AXElementRef& window, Seconds timeout) override;
    void unminimize(const AXElementRef& window) override;
    void raise(const AXElementRef& window) override;
    void setMain(const AXElementRef& window) override;
    void setFocused(const AXElementRef& window) override;
    void setFocusedWindow(Pid pid, const AXElementRef& window) override;
    void setFrontmost(Pid pid) override;
    [[nodiscard]] std::optional<bool> isMain(const AXElementRef& window) const override;
    [[nodiscard]] std::optional<bool> isFocused(const AXElementRef& window) const override;
    [[nodiscard]] bool wasOvertaken(const AXElementRef& window) const override;
    [[nodiscard]] std::vector<AXElementRef> windowElements(Pid pid) const override;
    [[nodiscard]] std::optional<WindowId> windowNumber(const AXElementRef& window) const override;

private:
    /// Nothing when the application does not answer.
    [[nodiscard]] std::optional<bool> hasFocus(const AXElementRef& window) const;
    [[nodiscard]] bool obeys(Pid pid) const;
    /// The element's window; null when its application does not carry out requests.
    [[nodiscard]] SimulatedWindowState* obedientWindow(const AXElementRef& element);
    void focus(const AXElementRef& element);

    SimulatedWindowModel& model_;
    SimulatedWindows& windows_;
    std::vector<std::string>& calls_;
};

}  // namespace ferrowyn

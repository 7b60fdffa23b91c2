#pragma once

#include <ApplicationServices/ApplicationServices.h>

#include <optional>

#include "platform/macos/cf_values.h"
#include "platform/macos/mac_element.h"
#include "platform/macos/mac_workspace.h"
#include "platform/window_control.h"

namespace ferrowyn {

class Log;

/// Raises windows through the Accessibility interface, and activates their applications. Each step is one message to
/// the application; a step that is refused is logged, and the next one follows. Main thread.
class MacWindowControl final : public WindowControl {
public:
    /// How long one message to an application, or to one of its windows, may take: an unresponsive application must not
    /// hold up the main thread for long.
    static constexpr Seconds messagingTimeout{0.5};

    /// All of them outlive this.
    MacWindowControl(MacApplicationControl& applications, const MacWindowNumberLookup& windowNumbers, Log& log)
        : applications_(applications), windowNumbers_(windowNumbers), log_(log) {}

    void activateApplication(Pid pid) override { applications_.activate(pid); }
    void raiseAndFocus(const RaiseRequest& request) override;
    /// Never `overtaken`: the system tells only what is focused now.
    [[nodiscard]] ActivationState stateOf(Pid pid, const AXElementRef& window) const override;
    [[nodiscard]] std::optional<AXElementRef> findWindow(Pid pid, WindowId window) const override;

private:
    void raise(AXUIElementRef window);
    void set(AXUIElementRef element, CFStringRef attribute, CFTypeRef value);
    void logRefusal(CFStringRef request, AXError error) const;

    MacApplicationControl& applications_;
    const MacWindowNumberLookup& windowNumbers_;
    Log& log_;
};

}  // namespace ferrowyn

#pragma once

#include <ApplicationServices/ApplicationServices.h>

#include <optional>

#include "platform/macos/cf_values.h"
#include "platform/macos/mac_element.h"
#include "platform/macos/mac_workspace.h"
#include "platform/window_control.h"

namespace ferrowyn {

class Log;

/// Each step of an activation is one call to the application or to its Accessibility interface. Main thread.
class MacWindowControl final : public WindowControl {
public:
    /// All of them outlive this.
    MacWindowControl(MacApplicationControl& applications, const MacWindowNumberLookup& windowNumbers, Log& log)
        : applications_(applications), windowNumbers_(windowNumbers), log_(log) {}

    [[nodiscard]] bool isHidden(Pid pid) const override { return applications_.isHidden(pid); }
    void unhide(Pid pid) override { applications_.unhide(pid); }
    void activate(Pid pid) override { applications_.activate(pid); }
    [[nodiscard]] bool isActive(Pid pid) const override { return applications_.isActive(pid); }

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

    /// The system tells only what is focused now.
    [[nodiscard]] bool wasOvertaken(const AXElementRef& /*window*/) const override { return false; }

    [[nodiscard]] std::vector<AXElementRef> windowElements(Pid pid) const override;
    [[nodiscard]] std::optional<WindowId> windowNumber(const AXElementRef& window) const override;

private:
    /// One application's handle, with the timeout that was set on it.
    struct Application {
        Pid pid = 0;
        Owned<AXUIElementRef> element;
        std::optional<Seconds> timeout;
    };

    /// One is enough, because windows are activated one at a time.
    [[nodiscard]] const Application& application(Pid pid) const;
    void set(AXUIElementRef element, CFStringRef attribute, CFTypeRef value);
    void logRefusal(CFStringRef request, AXError error) const;

    MacApplicationControl& applications_;
    const MacWindowNumberLookup& windowNumbers_;
    Log& log_;
    mutable Application application_;
};

}  // namespace ferrowyn

#pragma once

#include <functional>
#include <string>

#include "platform/accessibility_observers.h"
#include "platform/window_control.h"
#include "platform/window_inventory.h"
#include "tests/platform/contract/contract.h"

namespace ferrowyn::contract {

/// One application whose windows come, change and go. Each call returns when the adapter can know of it; what the
/// adapter then tells its observers comes inside `runUntil`.
class DesktopDriver {
public:
    virtual ~DesktopDriver() = default;

    virtual WindowInventory& inventory() = 0;
    virtual WindowControl& control() = 0;
    virtual AccessibilityObservers& observers() = 0;

    virtual Pid application() = 0;
    /// Opens in front of all others.
    virtual WindowId open(const std::string& title) = 0;
    virtual void close(WindowId window) = 0;
    virtual void setTitle(WindowId window, const std::string& title) = 0;
    virtual void minimize(WindowId window) = 0;
    /// The user clicks the window.
    virtual void focus(WindowId window) = 0;

    /// Runs the main loop until the predicate holds; false when it never does.
    [[nodiscard]] virtual bool runUntil(const std::function<bool()>& predicate) = 0;
};

class WindowInventoryContract : public Contract<DesktopDriver> {
protected:
    [[nodiscard]] std::vector<WindowId> listed();
    [[nodiscard]] std::optional<WindowServerEntry> entry(WindowId window);
    /// By its title, so that the lookup of window numbers has no part in it.
    [[nodiscard]] std::optional<AccessibleWindow> described(const std::string& title);
};

class AccessibilityObserverContract : public Contract<DesktopDriver> {
protected:
    [[nodiscard]] AXElementRef element(WindowId window);
    [[nodiscard]] std::unique_ptr<AccessibilityObserver> observe(std::vector<std::string>& heard);
    [[nodiscard]] bool runUntilHeard(const std::vector<std::string>& heard, const std::string& notification);
};

}  // namespace ferrowyn::contract

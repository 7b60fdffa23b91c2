#pragma once

#include "platform/application.h"
#include "platform/x11/x11_desktop_model.h"
#include "platform/x11/x11_window_control.h"

namespace ferrowyn {

class X11Application final : public Application {
public:
    /// Both outlive this.
    X11Application(const X11DesktopModel& model, X11WindowControl& windows) : model_(model), windows_(windows) {}

    [[nodiscard]] Pid ownPid() const override;
    [[nodiscard]] Subscription observeDidBecomeActive(std::function<void()> handler) override;
    [[nodiscard]] BundleInfo bundleInfo() const override;
    [[nodiscard]] std::string systemVersion() const override;
    [[nodiscard]] std::optional<int> calendarYear(WallTime moment) const override;
    /// A window that is open is in the task bar anyway; there is nothing to switch.
    void setActivationPolicy(ActivationPolicy policy) override;
    void activate() override;
    void bringToFront(WindowId window) override;
    void terminate() override;
    void revealInFileManager() override;

private:
    const X11DesktopModel& model_;
    X11WindowControl& windows_;
};

}  // namespace ferrowyn

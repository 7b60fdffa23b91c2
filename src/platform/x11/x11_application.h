#pragma once

#include "platform/application.h"
#include "platform/x11/x11_desktop_model.h"

namespace ferrowyn {

class X11Application final : public Application {
public:
    /// The model outlives this.
    explicit X11Application(const X11DesktopModel& model) : model_(model) {}

    [[nodiscard]] Pid ownPid() const override;
    [[nodiscard]] Subscription observeDidBecomeActive(std::function<void()> handler) override;
    [[nodiscard]] BundleInfo bundleInfo() const override;
    [[nodiscard]] std::string systemVersion() const override;
    /// A window that is open is in the task bar anyway; there is nothing to switch.
    void setActivationPolicy(ActivationPolicy policy) override;
    void activate() override;
    void terminate() override;
    void revealInFileManager() override;

private:
    const X11DesktopModel& model_;
};

}  // namespace ferrowyn

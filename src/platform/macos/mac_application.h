#pragma once

#include "platform/application.h"

namespace ferrowyn {

/// This process as macOS knows it. Main thread, once there is an application object.
class MacApplication final : public Application {
public:
    [[nodiscard]] Pid ownPid() const override;
    [[nodiscard]] Subscription observeDidBecomeActive(std::function<void()> handler) override;
    [[nodiscard]] BundleInfo bundleInfo() const override;
    [[nodiscard]] std::string systemVersion() const override;
    [[nodiscard]] std::optional<int> calendarYear(WallTime moment) const override;
    void setActivationPolicy(ActivationPolicy policy) override;
    void activate() override;
    /// The toolkit's number of a window is the address of its view, of which a window id holds the lower half.
    void bringToFront(WindowId window) override;
    void terminate() override;
    void revealInFileManager() override;
};

}  // namespace ferrowyn

#pragma once

#include <vector>

#include "core/published.h"
#include "platform/application.h"

namespace ferrowyn {

class SimulatedApplication final : public Application {
public:
    explicit SimulatedApplication(Pid ownPid) : ownPid_(ownPid) {}

    [[nodiscard]] Pid ownPid() const override { return ownPid_; }
    [[nodiscard]] Subscription observeDidBecomeActive(std::function<void()> handler) override {
        return activations_.subscribe([handler = std::move(handler)](const Activation&) { handler(); });
    }

    [[nodiscard]] BundleInfo bundleInfo() const override { return bundle; }
    [[nodiscard]] std::string systemVersion() const override { return version; }
    [[nodiscard]] std::optional<int> calendarYear(WallTime /*moment*/) const override { return year; }
    void setActivationPolicy(ActivationPolicy policy) override { policies.push_back(policy); }
    void activate() override { ++activationCount; }
    void bringToFront(WindowId window) override { broughtToFront.push_back(window); }
    void terminate() override { ++terminationCount; }
    void revealInFileManager() override { ++revealCount; }

    void becomeActive() { activations_.send({}); }

    /// What the program says of itself; a test may change it before anybody asks.
    BundleInfo bundle{.name = "Ferrowyn",
                      .shortVersion = "1.0",
                      .path = "/Applications/Ferrowyn.app",
                      .updateHost = "updates.ferrowyn.example",
                      .homePage = "https://ferrowyn.example"};
    std::string version = "14.5";
    std::optional<int> year;
    /// What was asked, in order.
    std::vector<ActivationPolicy> policies;
    int activationCount = 0;
    std::vector<WindowId> broughtToFront;
    int terminationCount = 0;
    int revealCount = 0;

private:
    struct Activation {};

    Pid ownPid_;
    Subject<Activation> activations_;
};

}  // namespace ferrowyn

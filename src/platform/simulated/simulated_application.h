#pragma once

#include "core/subject.h"
#include "platform/application.h"

namespace ferrowyn {

class SimulatedApplication final : public Application {
public:
    explicit SimulatedApplication(Pid ownPid) : ownPid_(ownPid) {}

    [[nodiscard]] Pid ownPid() const override { return ownPid_; }
    [[nodiscard]] Subscription observeDidBecomeActive(std::function<void()> handler) override {
        return activations_.subscribe([handler = std::move(handler)](const Activation&) { handler(); });
    }

    void becomeActive() { activations_.send({}); }

private:
    struct Activation {};

    Pid ownPid_;
    Subject<Activation> activations_;
};

}  // namespace ferrowyn

#pragma once

#include "core/published.h"
#include "platform/trust.h"

namespace ferrowyn {

/// Trusted at first; the prompt changes nothing by itself, as the user has yet to answer it.
class SimulatedTrust final : public Trust {
public:
    [[nodiscard]] bool isTrusted() const override { return isTrusted_; }
    [[nodiscard]] bool canBecomeTrusted() const override { return canBecomeTrusted_; }
    bool requestWithPrompt() override {
        ++promptCount_;
        return isTrusted_;
    }
    [[nodiscard]] bool isSecureInputActive() const override { return isSecureInputActive_; }
    [[nodiscard]] Subscription observeChanges(std::function<void()> handler) override {
        return changes_.subscribe([handler = std::move(handler)](const Hint&) { handler(); });
    }

    [[nodiscard]] Subscription observeLostTriggers(std::function<void()> handler) override {
        return lostTriggers_.subscribe([handler = std::move(handler)](const Hint&) { handler(); });
    }

    void setTrusted(bool isTrusted) { isTrusted_ = isTrusted; }
    void makeServerUnusable() { isTrusted_ = canBecomeTrusted_ = false; }
    void setSecureInput(bool isActive) { isSecureInputActive_ = isActive; }
    void announceChange() { changes_.send({}); }
    void loseTrigger() { lostTriggers_.send({}); }
    [[nodiscard]] int promptCount() const { return promptCount_; }

private:
    struct Hint {};

    bool isTrusted_ = true;
    bool canBecomeTrusted_ = true;
    bool isSecureInputActive_ = false;
    int promptCount_ = 0;
    Subject<Hint> changes_;
    Subject<Hint> lostTriggers_;
};

}  // namespace ferrowyn

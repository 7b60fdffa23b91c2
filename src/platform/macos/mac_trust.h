#pragma once

#include <functional>

#include "platform/trust.h"

namespace ferrowyn {

/// Whether the user lets this process use Accessibility, and whether the keyboard is in secure input. Main thread.
class MacTrust final : public Trust {
public:
    /// Tells of each change of the Accessibility database until the token is dropped.
    using ObserveDatabase = std::function<Subscription(std::function<void()> handler)>;

    explicit MacTrust(ObserveDatabase observeDatabase) : observeDatabase_(std::move(observeDatabase)) {}

    [[nodiscard]] bool isTrusted() const override;
    /// Every macOS that the program runs on has what it needs.
    [[nodiscard]] bool canBecomeTrusted() const override { return true; }
    bool requestWithPrompt() override;
    [[nodiscard]] bool isSecureInputActive() const override;
    /// Never calls the handler: event taps see keys before every other program does.
    [[nodiscard]] Subscription observeLostTriggers(std::function<void()> /*handler*/) override { return {}; }
    [[nodiscard]] Subscription observeChanges(std::function<void()> handler) override;

private:
    ObserveDatabase observeDatabase_;
};

}  // namespace ferrowyn

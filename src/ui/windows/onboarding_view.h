#pragma once

#include <QWidget>
#include <functional>
#include <string>

#include "core/published.h"

namespace ferrowyn {

struct Platform;
class AccessibilityAuthorizer;
class Preferences;

/// The content of the setup window: what is missing and how to repair it, or how to use the switcher. It follows the
/// permission. Main thread. The platform and the services outlive it.
class OnboardingView final : public QWidget {
    Q_OBJECT

public:
    /// `onDone` closes the setup window. `makeReport` describes this desktop for a bug report, on a worker thread;
    /// without it there is no button that copies one.
    OnboardingView(const Platform& platform, AccessibilityAuthorizer& authorizer, const Preferences& preferences,
                   std::function<void()> onDone, std::function<std::string()> makeReport = nullptr);
    ~OnboardingView() override;

private:
    [[nodiscard]] QWidget* makeFooter(const Platform& platform);

    std::function<void()> onDone_;
    Subscription statusSubscription_;
};

}  // namespace ferrowyn

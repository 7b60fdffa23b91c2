#include "services/accessibility_authorizer.h"

#include <fmt/format.h>

#include "platform/application.h"
#include "platform/log.h"
#include "platform/main_loop.h"
#include "platform/platform.h"
#include "platform/trust.h"
#include "platform/workspace.h"

namespace ferrowyn {

namespace {

constexpr std::string_view logCategory = "permissions";

/// How long after its notification the system may still give the old answer.
constexpr Seconds refreshDelay{0.25};
/// Short, because a user who is granting the permission should see the program react at once.
constexpr Seconds backstopIntervalWhileNotTrusted{1.0};
constexpr Seconds backstopIntervalWhileTrusted{2.0};
constexpr Seconds secureInputInterval{2.0};

AccessibilityStatus statusFrom(bool isTrusted) {
    return isTrusted ? AccessibilityStatus::trusted : AccessibilityStatus::notTrusted;
}

std::string_view statusName(AccessibilityStatus status) {
    return status == AccessibilityStatus::trusted ? "trusted" : "notTrusted";
}

}  // namespace

AccessibilityAuthorizer::AccessibilityAuthorizer(const Platform& platform)
    : mainLoop_(platform.mainLoop),
      log_(platform.log),
      trust_(platform.trust),
      workspace_(platform.workspace),
      status_(statusFrom(trust_.isTrusted())) {
    observers_.push_back(trust_.observeChanges([this] { scheduleRefresh(); }));
    observers_.push_back(platform.application.observeDidBecomeActive([this] { scheduleRefresh(); }));
    restartBackstopTimer();
    startSecureInputPolling();
}

bool AccessibilityAuthorizer::canBecomeTrusted() const {
    return trust_.canBecomeTrusted();
}

void AccessibilityAuthorizer::refresh() {
    const auto current = statusFrom(trust_.isTrusted());
    if (current == status_.get()) {
        return;
    }
    log_.write(LogLevel::standard, logCategory, fmt::format("Accessibility trust changed to {}", statusName(current)));
    status_.set(current);
    restartBackstopTimer();
}

void AccessibilityAuthorizer::requestTrust() {
    trust_.requestWithPrompt();
    hasRequestedTrust_ = true;
    refresh();
}

void AccessibilityAuthorizer::openAccessibilitySettings() {
    workspace_.openSettings(SettingsPage::accessibility);
}

void AccessibilityAuthorizer::scheduleRefresh() {
    // Refreshes run in the order in which they were requested, so the one that runs is the oldest.
    pendingRefreshes_.push_back(mainLoop_.after(refreshDelay, [this] {
        refresh();
        pendingRefreshes_.pop_front();
    }));
}

void AccessibilityAuthorizer::restartBackstopTimer() {
    const auto interval =
        status_.get() == Status::trusted ? backstopIntervalWhileTrusted : backstopIntervalWhileNotTrusted;
    backstopTimer_ = mainLoop_.every(interval, [this] { refresh(); });
}

void AccessibilityAuthorizer::startSecureInputPolling() {
    isSecureInputActive_.set(trust_.isSecureInputActive());
    secureInputTimer_ = mainLoop_.every(secureInputInterval, [this] { readSecureInput(); });
}

void AccessibilityAuthorizer::readSecureInput() {
    const bool isActive = trust_.isSecureInputActive();
    if (isActive == isSecureInputActive_.get()) {
        return;
    }
    isSecureInputActive_.set(isActive);
    log_.write(LogLevel::standard, logCategory, fmt::format("Secure input active: {}", isActive));
}

}  // namespace ferrowyn

#include "services/launch_at_login_service.h"

#include <fmt/format.h>

#include <string_view>

#include "core/texts.h"
#include "platform/application.h"
#include "platform/log.h"
#include "platform/platform.h"
#include "platform/workspace.h"

namespace ferrowyn {

namespace {

constexpr std::string_view logCategory = "permissions";
constexpr std::string_view refusalDomain = "SMAppServiceErrorDomain";
/// The system's error code for "operation not permitted".
constexpr int refusalCode = 1;

}  // namespace

LaunchAtLoginService::LaunchAtLoginService(const Platform& platform)
    : log_(platform.log), workspace_(platform.workspace), texts_(platform.texts), service_(platform.loginItem) {
    refresh();
    activations_ = platform.application.observeDidBecomeActive([this] { refresh(); });
}

bool LaunchAtLoginService::startsAtLogin() const {
    return std::holds_alternative<Enabled>(state_.get()) || requiresApproval();
}

bool LaunchAtLoginService::requiresApproval() const {
    return std::holds_alternative<RequiresApproval>(state_.get());
}

void LaunchAtLoginService::refresh() {
    switch (service_.status()) {
        case LoginItem::Status::enabled:
            state_.setIfChanged(Enabled{});
            return;
        case LoginItem::Status::requiresApproval:
            state_.setIfChanged(RequiresApproval{});
            return;
        case LoginItem::Status::notFound:
            state_.setIfChanged(Unavailable{std::string(texts_.loginItemUnavailable)});
            return;
        case LoginItem::Status::notRegistered:
            break;
    }
    state_.setIfChanged(Disabled{});
}

void LaunchAtLoginService::setEnabled(bool isEnabled) {
    lastError_.setIfChanged(std::nullopt);
    if (const auto error = isEnabled ? service_.registerProgram() : service_.unregisterProgram()) {
        lastError_.set(userMessage(*error));
        log_.write(LogLevel::error, logCategory,
                   fmt::format("Launch at login toggle failed: {}", error->localizedDescription));
    } else {
        log_.write(LogLevel::standard, logCategory, fmt::format("Launch at login set to {}", isEnabled));
    }
    refresh();
}

std::string LaunchAtLoginService::userMessage(const LoginItem::Error& error) const {
    // The code counts in every domain, because an error that wraps the service's error keeps only the code.
    const bool isRefusal = error.domain == refusalDomain || error.code == refusalCode;
    return isRefusal ? std::string(texts_.loginItemRefused) : error.localizedDescription;
}

std::optional<std::string> LaunchAtLoginService::explanatoryMessage() const {
    if (lastError_.get()) {
        return lastError_.get();
    }
    if (const auto* unavailable = std::get_if<Unavailable>(&state_.get())) {
        return unavailable->reason;
    }
    if (requiresApproval()) {
        return std::string(texts_.loginItemApproval);
    }
    return std::nullopt;
}

void LaunchAtLoginService::openLoginItemsSettings() {
    workspace_.openSettings(SettingsPage::loginItems);
}

}  // namespace ferrowyn

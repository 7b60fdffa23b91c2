#pragma once

#include <optional>
#include <string>
#include <variant>

#include "core/published.h"
#include "platform/login_item.h"

namespace ferrowyn {

struct Platform;
struct TextTable;
class Log;
class Workspace;

/// Lets the user start the program at login, and explains to the user when that does not work. Reads the state from the
/// system at construction, after every request, and each time the program becomes active. Main thread; AppServices owns
/// it, and the platform outlives it.
class LaunchAtLoginService {
public:
    /// The program cannot be registered; the reason is the text to show.
    struct Unavailable {
        std::string reason;

        friend bool operator==(const Unavailable&, const Unavailable&) = default;
    };
    /// Registered and allowed to run at login.
    struct Enabled {
        friend bool operator==(const Enabled&, const Enabled&) = default;
    };
    struct Disabled {
        friend bool operator==(const Disabled&, const Disabled&) = default;
    };
    /// Registered; the user still has to allow it in the system's settings.
    struct RequiresApproval {
        friend bool operator==(const RequiresApproval&, const RequiresApproval&) = default;
    };
    using State = std::variant<Unavailable, Enabled, Disabled, RequiresApproval>;

    explicit LaunchAtLoginService(const Platform& platform);

    [[nodiscard]] const Published<State>& state() const { return state_; }
    /// The message for the user when the last request failed; absent after a successful one.
    [[nodiscard]] const Published<std::optional<std::string>>& lastError() const { return lastError_; }

    /// Whether the switch for it is on: also while the user still has to allow it.
    [[nodiscard]] bool startsAtLogin() const;
    /// Whether the user still has to allow it.
    [[nodiscard]] bool requiresApproval() const;

    /// Reads the system's answer again, now.
    void refresh();
    /// Registers or unregisters the program.
    void setEnabled(bool isEnabled);
    /// The text to show beside the switch; absent when there is nothing to explain.
    [[nodiscard]] std::optional<std::string> explanatoryMessage() const;
    void openLoginItemsSettings();

private:
    [[nodiscard]] std::string userMessage(const LoginItem::Error& error) const;

    Log& log_;
    Workspace& workspace_;
    const TextTable& texts_;
    Published<State> state_{Disabled{}};
    Published<std::optional<std::string>> lastError_;
    LoginItem& service_;
    Subscription activations_;
};

}  // namespace ferrowyn

#pragma once

#include <optional>
#include <string>

namespace ferrowyn {

/// The desktop's way of starting this program at login. Main thread; the calls are short and synchronous.
class LoginItem {
public:
    enum class Status { notRegistered, enabled, requiresApproval, notFound };

    struct Error {
        std::string domain;
        int code = 0;
        /// In words, as the system gives it.
        std::string localizedDescription;
    };

    virtual ~LoginItem() = default;

    [[nodiscard]] virtual Status status() const = 0;
    /// Each answers with what went wrong, or nothing.
    [[nodiscard]] virtual std::optional<Error> registerProgram() = 0;
    [[nodiscard]] virtual std::optional<Error> unregisterProgram() = 0;
};

}  // namespace ferrowyn

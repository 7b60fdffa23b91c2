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
        /// The system's own description of the error.
        std::string localizedDescription;
    };

    virtual ~LoginItem() = default;

    [[nodiscard]] virtual Status status() const = 0;
    /// Each returns the error, or nothing on success.
    [[nodiscard]] virtual std::optional<Error> registerProgram() = 0;
    [[nodiscard]] virtual std::optional<Error> unregisterProgram() = 0;
};

}  // namespace ferrowyn

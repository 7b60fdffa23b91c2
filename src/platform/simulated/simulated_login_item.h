#pragma once

#include <optional>
#include <vector>

#include "platform/login_item.h"

namespace ferrowyn {

/// A login item that registers at once, unless a test has it answer otherwise.
class SimulatedLoginItem final : public LoginItem {
public:
    [[nodiscard]] Status status() const override { return current; }
    [[nodiscard]] std::optional<Error> registerProgram() override { return request(true, statusAfterRegistering); }
    [[nodiscard]] std::optional<Error> unregisterProgram() override { return request(false, Status::notRegistered); }

    Status current = Status::notRegistered;
    Status statusAfterRegistering = Status::enabled;
    /// While set, every request fails with it and changes nothing.
    std::optional<Error> error;
    /// What was asked, in order: true to register.
    std::vector<bool> requests;

private:
    std::optional<Error> request(bool registers, Status statusOnSuccess) {
        requests.push_back(registers);
        if (!error) {
            current = statusOnSuccess;
        }
        return error;
    }
};

}  // namespace ferrowyn

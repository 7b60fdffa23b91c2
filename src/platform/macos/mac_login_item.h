#pragma once

#include "platform/login_item.h"

namespace ferrowyn {

/// The application itself as the user's login item. Main thread.
class MacLoginItem final : public LoginItem {
public:
    [[nodiscard]] Status status() const override;
    [[nodiscard]] std::optional<Error> registerProgram() override;
    [[nodiscard]] std::optional<Error> unregisterProgram() override;
};

}  // namespace ferrowyn

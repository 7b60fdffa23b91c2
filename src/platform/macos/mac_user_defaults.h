#pragma once

#include "platform/user_defaults.h"

namespace ferrowyn {

/// The standard user-defaults store of the program's own domain. Main thread.
class MacUserDefaults final : public UserDefaults {
public:
    void registerDefaults(const std::map<std::string, DefaultsValue>& defaults) override;
    /// Nothing for a value of a type that the program stores nowhere.
    [[nodiscard]] std::optional<DefaultsValue> value(std::string_view key) const override;
    void set(std::string_view key, DefaultsValue value) override;
};

}  // namespace ferrowyn

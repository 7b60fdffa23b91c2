#pragma once

#include <functional>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "platform/user_defaults.h"

namespace ferrowyn {

/// A store in memory that remembers every write.
class SimulatedUserDefaults final : public UserDefaults {
public:
    void registerDefaults(const std::map<std::string, DefaultsValue>& defaults) override;
    [[nodiscard]] std::optional<DefaultsValue> value(std::string_view key) const override;
    void set(std::string_view key, DefaultsValue value) override;

    [[nodiscard]] const std::vector<std::pair<std::string, DefaultsValue>>& writes() const { return writes_; }

private:
    std::map<std::string, DefaultsValue, std::less<>> registered_;
    std::map<std::string, DefaultsValue, std::less<>> stored_;
    std::vector<std::pair<std::string, DefaultsValue>> writes_;
};

}  // namespace ferrowyn

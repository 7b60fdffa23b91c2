#include "platform/simulated/simulated_user_defaults.h"

namespace ferrowyn {

void SimulatedUserDefaults::registerDefaults(const std::map<std::string, DefaultsValue>& defaults) {
    for (const auto& [key, value] : defaults) {
        registered_.insert_or_assign(key, value);
    }
}

std::optional<DefaultsValue> SimulatedUserDefaults::value(std::string_view key) const {
    if (const auto stored = stored_.find(key); stored != stored_.end()) {
        return stored->second;
    }
    if (const auto registered = registered_.find(key); registered != registered_.end()) {
        return registered->second;
    }
    return std::nullopt;
}

void SimulatedUserDefaults::set(std::string_view key, DefaultsValue value) {
    writes_.emplace_back(key, value);
    stored_.insert_or_assign(std::string(key), std::move(value));
}

}  // namespace ferrowyn

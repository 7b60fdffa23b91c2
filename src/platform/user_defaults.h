#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace ferrowyn {

using DefaultsValue = std::variant<bool, std::int64_t, double, std::string, std::vector<std::string>>;

/// The user's persistent key–value store, with a registration domain of defaults that answers for absent keys and is
/// never stored. Main thread. A store that cannot be written keeps working in memory and says so once in the log.
class UserDefaults {
public:
    virtual ~UserDefaults() = default;

    virtual void registerDefaults(const std::map<std::string, DefaultsValue>& defaults) = 0;

    /// What is stored under the key, else what is registered for it, whatever its type; nothing when there is neither.
    [[nodiscard]] virtual std::optional<DefaultsValue> value(std::string_view key) const = 0;
    /// Stores the value: later reads see it at once, and it is on its way to the disk when this returns.
    virtual void set(std::string_view key, DefaultsValue value) = 0;

    /// The typed reads take what can be read as their type and answer with the type's zero (or nothing) otherwise. A
    /// real is cut to an integer towards zero, a number beyond the integers to the last of them on its side; any number
    /// but zero is true.
    [[nodiscard]] std::optional<std::string> string(std::string_view key) const;
    [[nodiscard]] bool boolean(std::string_view key) const;
    [[nodiscard]] std::int64_t integer(std::string_view key) const;
    [[nodiscard]] double real(std::string_view key) const;
    [[nodiscard]] std::optional<std::vector<std::string>> stringArray(std::string_view key) const;
};

}  // namespace ferrowyn

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

    /// The stored value of the key, else the registered one, of any type; nothing when there is neither.
    [[nodiscard]] virtual std::optional<DefaultsValue> value(std::string_view key) const = 0;
    /// Stores the value. Later reads return it at once; it is written to the disk soon after.
    virtual void set(std::string_view key, DefaultsValue value) = 0;

    /// The typed reads convert the value to their type. They return zero, false or nothing when it cannot be converted.
    /// A real is rounded towards zero to an integer; a number beyond the range becomes the nearest integer of the
    /// range; any number except zero is true.
    [[nodiscard]] std::optional<std::string> string(std::string_view key) const;
    [[nodiscard]] bool boolean(std::string_view key) const;
    [[nodiscard]] std::int64_t integer(std::string_view key) const;
    [[nodiscard]] double real(std::string_view key) const;
    [[nodiscard]] std::optional<std::vector<std::string>> stringArray(std::string_view key) const;
};

}  // namespace ferrowyn

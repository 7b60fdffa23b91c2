#pragma once

#include <memory>

#include "platform/log.h"
#include "platform/login_item.h"
#include "platform/user_defaults.h"

namespace ferrowyn {

/// The unified log, with the bundle's identifier as the subsystem. Any thread.
class MacLog final : public Log {
public:
    MacLog();
    ~MacLog() override;
    MacLog(const MacLog&) = delete;
    MacLog& operator=(const MacLog&) = delete;

    void write(LogLevel level, std::string_view category, std::string_view message) override;

private:
    struct Parts;
    std::unique_ptr<Parts> parts_;
};

/// The standard user-defaults store of the program's own domain. Main thread.
class MacUserDefaults final : public UserDefaults {
public:
    void registerDefaults(const std::map<std::string, DefaultsValue>& defaults) override;
    /// Absent also when the stored value has a type that the program never stores.
    [[nodiscard]] std::optional<DefaultsValue> value(std::string_view key) const override;
    void set(std::string_view key, DefaultsValue value) override;
};

/// The application itself as the user's login item. Main thread.
class MacLoginItem final : public LoginItem {
public:
    [[nodiscard]] Status status() const override;
    [[nodiscard]] std::optional<Error> registerProgram() override;
    [[nodiscard]] std::optional<Error> unregisterProgram() override;
};

}  // namespace ferrowyn

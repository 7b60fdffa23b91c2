#pragma once

#include <filesystem>
#include <functional>
#include <map>
#include <memory>

#include "platform/user_defaults.h"

namespace ferrowyn {

class IniFileWriter;
class Log;

/// User defaults in an INI file. The file is read once, at construction; a writer thread stores the changes, so that no
/// caller waits for the disk. A change replaces only its key: other edits made to the file in the meantime stay. Main
/// thread.
///
/// QSettings does not fit: it does not distinguish "true" from true, drops comments, starts empty without a message
/// when the file is damaged, and writes on the caller's thread.
class IniUserDefaults final : public UserDefaults {
public:
    /// The file and its folder need not exist. The log outlives this object.
    IniUserDefaults(const std::filesystem::path& file, Log& log);
    /// Waits until each change is stored or has failed.
    ~IniUserDefaults() override;
    IniUserDefaults(const IniUserDefaults&) = delete;
    IniUserDefaults& operator=(const IniUserDefaults&) = delete;

    void registerDefaults(const std::map<std::string, DefaultsValue>& defaults) override;
    [[nodiscard]] std::optional<DefaultsValue> value(std::string_view key) const override;
    void set(std::string_view key, DefaultsValue value) override;

    /// Waits until each change made so far is stored or has failed.
    void flush();

private:
    std::map<std::string, DefaultsValue, std::less<>> stored_;
    std::map<std::string, DefaultsValue, std::less<>> registered_;
    std::unique_ptr<IniFileWriter> writer_;
};

}  // namespace ferrowyn

#pragma once

#include <filesystem>
#include <functional>
#include <map>
#include <memory>

#include "platform/user_defaults.h"

namespace ferrowyn {

class IniFileWriter;
class Log;

/// User defaults in an INI file. Reading happens once, at construction; a change is handed to a writer thread at once,
/// so that no caller ever waits for the disk. What others wrote into the file in the meantime stays, as far as it is
/// not the very key that is set. Main thread.
///
/// QSettings would be the library for this, but it does not keep what is promised here: it reads "true" back as the
/// same thing as true, drops comments, silently starts from nothing when the file is damaged, and syncs on the thread
/// of its caller.
class IniUserDefaults final : public UserDefaults {
public:
    /// The file need not exist, nor its folder. The log outlives this object.
    IniUserDefaults(const std::filesystem::path& file, Log& log);
    /// Waits until everything is stored, or has failed to be.
    ~IniUserDefaults() override;
    IniUserDefaults(const IniUserDefaults&) = delete;
    IniUserDefaults& operator=(const IniUserDefaults&) = delete;

    void registerDefaults(const std::map<std::string, DefaultsValue>& defaults) override;
    [[nodiscard]] std::optional<DefaultsValue> value(std::string_view key) const override;
    void set(std::string_view key, DefaultsValue value) override;

    /// Waits until everything set so far is stored, or has failed to be.
    void flush();

private:
    std::map<std::string, DefaultsValue, std::less<>> stored_;
    std::map<std::string, DefaultsValue, std::less<>> registered_;
    std::unique_ptr<IniFileWriter> writer_;
};

}  // namespace ferrowyn

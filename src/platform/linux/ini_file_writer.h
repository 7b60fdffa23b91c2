#pragma once

#include <condition_variable>
#include <filesystem>
#include <map>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>

#include "platform/linux/ini_document.h"

namespace ferrowyn {

class Log;

/// Reads the file of the user defaults, and stores changes in it on a thread of its own. The public functions belong to
/// one thread.
class IniFileWriter {
public:
    using Values = std::map<std::string, DefaultsValue, std::less<>>;

    IniFileWriter(std::filesystem::path file, Log& log);
    ~IniFileWriter();
    IniFileWriter(const IniFileWriter&) = delete;
    IniFileWriter& operator=(const IniFileWriter&) = delete;

    /// What the file holds now. A damaged file is moved aside first, and what killed writers left is removed. Before
    /// the first `store`.
    [[nodiscard]] Values read();
    /// Hands one change to the writer.
    void store(std::string_view key, DefaultsValue value);
    /// Waits until all changes are stored or have failed to be.
    void flush();

private:
    void runWriter();
    /// Merges the changes into what the file holds at this moment, since others may write it too.
    [[nodiscard]] bool write(const Values& changes);
    [[nodiscard]] IniDocument readDocument();
    void keepAside(std::string_view why);
    void reportUnreadable(std::string_view why);
    void reportUnwritable(std::string_view why);

    const std::filesystem::path file_;
    Log& log_;
    /// What is stored as far as this object knows: the way back when someone else damages the file. Writer thread, and
    /// before there is one.
    IniDocument lastGood_;
    bool hasReportedUnreadable_ = false;
    bool hasReportedUnwritable_ = false;

    std::mutex mutex_;
    std::condition_variable wake_;
    std::condition_variable idle_;
    /// Set since the last attempt to write.
    Values waiting_;
    bool isWriting_ = false;
    bool isEnding_ = false;
    /// Started at the first change: most runs never make one.
    std::thread thread_;
};

}  // namespace ferrowyn

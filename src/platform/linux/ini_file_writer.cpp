#include "platform/linux/ini_file_writer.h"

#include <fmt/format.h>

#include <utility>

#include "platform/linux/atomic_file.h"
#include "platform/log.h"

namespace ferrowyn {

namespace {

constexpr std::string_view logCategory = "ui";
/// A settings file has a few kilobytes; this much is something else.
constexpr std::size_t largestFile = 4U << 20U;
constexpr int mostKeptAside = 100;

/// A name beside the file that is not taken.
std::filesystem::path asideName(const std::filesystem::path& file) {
    auto name = file;
    name += ".damaged";
    std::error_code error;
    for (int number = 2; number <= mostKeptAside && std::filesystem::exists(symlink_status(name, error)); ++number) {
        name = file;
        name += fmt::format(".damaged-{}", number);
    }
    return name;
}

}  // namespace

IniFileWriter::IniFileWriter(std::filesystem::path file, Log& log) : file_(std::move(file)), log_(log) {}

IniFileWriter::~IniFileWriter() {
    {
        const std::scoped_lock lock(mutex_);
        isEnding_ = true;
    }
    wake_.notify_one();
    if (thread_.joinable()) {
        thread_.join();
    }
}

IniFileWriter::Values IniFileWriter::read() {
    removeUnfinishedFiles(file_);
    lastGood_ = readDocument();
    return lastGood_.values();
}

void IniFileWriter::store(std::string_view key, DefaultsValue value) {
    {
        const std::scoped_lock lock(mutex_);
        waiting_.insert_or_assign(std::string(key), std::move(value));
    }
    if (thread_.joinable()) {
        wake_.notify_one();
    } else {
        thread_ = std::thread([this] { runWriter(); });
    }
}

void IniFileWriter::flush() {
    std::unique_lock lock(mutex_);
    idle_.wait(lock, [this] { return waiting_.empty() && !isWriting_; });
}

void IniFileWriter::runWriter() {
    // Changes that could not be stored so far, tried again together with the next one.
    Values unstored;
    std::unique_lock lock(mutex_);
    while (true) {
        wake_.wait(lock, [this] { return isEnding_ || !waiting_.empty(); });
        if (waiting_.empty()) {
            return;
        }
        for (auto& [key, value] : std::exchange(waiting_, {})) {
            unstored.insert_or_assign(key, std::move(value));
        }
        isWriting_ = true;
        lock.unlock();
        if (write(unstored)) {
            unstored.clear();
        }
        lock.lock();
        isWriting_ = false;
        idle_.notify_all();
    }
}

bool IniFileWriter::write(const Values& changes) {
    auto document = readDocument();
    for (const auto& [key, value] : changes) {
        document.set(key, value);
    }
    if (const auto error = replaceFile(file_, document.text())) {
        reportUnwritable(error.message());
        return false;
    }
    lastGood_ = std::move(document);
    return true;
}

IniDocument IniFileWriter::readDocument() {
    std::error_code error;
    const auto text = readFile(file_, largestFile, error);
    if (error == std::errc::no_such_file_or_directory || error == std::errc::not_a_directory) {
        return {};
    }
    std::error_code notThere;
    if (error == notARegularFile() && !std::filesystem::is_directory(file_, notThere)) {
        // A device or a pipe is there on purpose. Writing says that it cannot be, too.
        reportUnreadable(error.message());
        return lastGood_;
    }
    if (error) {
        keepAside(error.message());
        return lastGood_;
    }
    if (auto document = IniDocument::parse(text)) {
        return *std::move(document);
    }
    keepAside("it is not a settings file");
    return lastGood_;
}

void IniFileWriter::keepAside(std::string_view why) {
    const auto aside = asideName(file_);
    std::error_code error;
    std::filesystem::rename(file_, aside, error);
    log_.write(LogLevel::error, logCategory,
               error ? fmt::format("The settings file {} cannot be read ({})", file_.string(), why)
                     : fmt::format("The settings file {} cannot be read ({}); it was kept as {}", file_.string(), why,
                                   aside.filename().string()));
}

void IniFileWriter::reportUnreadable(std::string_view why) {
    if (!std::exchange(hasReportedUnreadable_, true)) {
        log_.write(LogLevel::error, logCategory,
                   fmt::format("The settings file {} cannot be read ({})", file_.string(), why));
    }
}

void IniFileWriter::reportUnwritable(std::string_view why) {
    if (!std::exchange(hasReportedUnwritable_, true)) {
        log_.write(
            LogLevel::error, logCategory,
            fmt::format("Settings cannot be stored in {} ({}); they last until the program ends", file_.string(), why));
    }
}

}  // namespace ferrowyn

#include "platform/linux/ini_user_defaults.h"

#include <fmt/format.h>

#include <condition_variable>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>
#include <utility>

#include "platform/linux/atomic_file.h"
#include "platform/linux/ini_document.h"
#include "platform/log.h"

namespace ferrowyn {

/// Reads the file of the user defaults and writes changes to it on its writer thread. The public functions are called
/// on one thread, that of the owning `IniUserDefaults`.
class IniFileWriter {
public:
    using Values = std::map<std::string, DefaultsValue, std::less<>>;

    IniFileWriter(std::filesystem::path file, Log& log);
    ~IniFileWriter();
    IniFileWriter(const IniFileWriter&) = delete;
    IniFileWriter& operator=(const IniFileWriter&) = delete;

    /// Returns the values in the file, after it has renamed a damaged file and removed old temporary files. Call it
    /// before the first `store`.
    [[nodiscard]] Values read();
    /// Passes one change to the writer thread.
    void store(std::string_view key, DefaultsValue value);
    /// Waits until each change is stored or has failed.
    void flush();

private:
    void runWriter();
    /// Reads the file again and merges the changes into it, because other programs may have written it.
    [[nodiscard]] bool write(const Values& changes);
    [[nodiscard]] IniDocument readDocument();
    void keepAside(std::string_view why);
    void reportUnreadable(std::string_view why);
    void reportUnwritable(std::string_view why);

    const std::filesystem::path file_;
    Log& log_;
    /// The last content that was read or written, used when the file is damaged later. Belongs to the writer thread,
    /// and before that thread starts to the caller's.
    IniDocument lastGood_;
    bool hasReportedUnreadable_ = false;
    bool hasReportedUnwritable_ = false;

    std::mutex mutex_;
    std::condition_variable wake_;
    std::condition_variable idle_;
    /// The changes that the writer thread has not taken yet. This and the two flags below are guarded by `mutex_`.
    Values waiting_;
    bool isWriting_ = false;
    bool isEnding_ = false;
    /// Started at the first change, because most runs make none.
    std::thread thread_;
};

IniUserDefaults::IniUserDefaults(const std::filesystem::path& file, Log& log)
    : writer_(std::make_unique<IniFileWriter>(file, log)) {
    stored_ = writer_->read();
}

IniUserDefaults::~IniUserDefaults() = default;

void IniUserDefaults::registerDefaults(const std::map<std::string, DefaultsValue>& defaults) {
    for (const auto& [key, value] : defaults) {
        registered_.insert_or_assign(key, value);
    }
}

std::optional<DefaultsValue> IniUserDefaults::value(std::string_view key) const {
    for (const auto* domain : {&stored_, &registered_}) {
        if (const auto found = domain->find(key); found != domain->end()) {
            return found->second;
        }
    }
    return std::nullopt;
}

void IniUserDefaults::set(std::string_view key, DefaultsValue value) {
    writer_->store(key, value);
    stored_.insert_or_assign(std::string(key), std::move(value));
}

void IniUserDefaults::flush() {
    writer_->flush();
}

namespace {

constexpr std::string_view logCategory = "ui";
/// A settings file has a few kilobytes; a larger file is not one.
constexpr std::size_t largestFile = 4U << 20U;
constexpr int mostKeptAside = 100;

/// A free name in the file's folder.
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
    // Changes whose write failed; they are written again together with the next change.
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
        // A device or a pipe is there on purpose, so it is not renamed. Writing fails too and is reported then.
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

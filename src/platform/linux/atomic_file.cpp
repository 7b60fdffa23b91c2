#include "platform/linux/atomic_file.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <string>
#include <utility>

namespace ferrowyn {

namespace {

/// The permissions that the XDG base directory rules ask for.
constexpr mode_t privateFolder = 0700;

class FileDescriptor {
public:
    explicit FileDescriptor(int descriptor) : descriptor_(descriptor) {}
    ~FileDescriptor() {
        if (descriptor_ >= 0) {
            ::close(descriptor_);
        }
    }
    FileDescriptor(const FileDescriptor&) = delete;
    FileDescriptor& operator=(const FileDescriptor&) = delete;

    [[nodiscard]] int get() const { return descriptor_; }
    [[nodiscard]] bool isOpen() const { return descriptor_ >= 0; }
    /// False when a write failed that the system had delayed.
    [[nodiscard]] bool close() { return ::close(std::exchange(descriptor_, -1)) == 0; }

private:
    int descriptor_;
};

class FileErrors final : public std::error_category {
public:
    [[nodiscard]] const char* name() const noexcept override { return "file"; }
    [[nodiscard]] std::string message(int /*only one*/) const override { return "it is not a regular file"; }
};

/// A temporary file's name is the file's name, this mark and six characters that `mkostemp` chooses.
constexpr std::string_view unfinishedMark = ".unfinished-";
constexpr std::string_view uniquePart = "XXXXXX";

std::error_code lastError() {
    return {errno, std::generic_category()};
}

std::error_code makeFolders(const std::filesystem::path& folder) {
    std::error_code statusError;
    if (folder.empty() || std::filesystem::is_directory(folder, statusError)) {
        return {};
    }
    if (auto error = makeFolders(folder.parent_path())) {
        return error;
    }
    return ::mkdir(folder.c_str(), privateFolder) == 0 || errno == EEXIST ? std::error_code{} : lastError();
}

bool writeAll(int descriptor, std::string_view content) {
    while (!content.empty()) {
        const ssize_t written = ::write(descriptor, content.data(), content.size());
        if (written < 0 && errno == EINTR) {
            continue;
        }
        if (written <= 0) {
            return false;
        }
        content.remove_prefix(static_cast<std::size_t>(written));
    }
    return true;
}

/// Follows a chain of links to its last target, which need not exist.
std::filesystem::path withoutLinks(std::filesystem::path file, std::error_code& error) {
    constexpr int mostLinks = 40;
    std::error_code notThere;
    for (int links = 0; std::filesystem::is_symlink(std::filesystem::symlink_status(file, notThere)); ++links) {
        if (links == mostLinks) {
            error = std::make_error_code(std::errc::too_many_symbolic_link_levels);
            return file;
        }
        const auto next = std::filesystem::read_symlink(file, error);
        if (error) {
            return file;
        }
        file = file.parent_path() / next;
    }
    return file;
}

bool isUnfinished(std::string_view name, std::string_view ofFile) {
    if (name.size() != ofFile.size() + unfinishedMark.size() + uniquePart.size() || !name.starts_with(ofFile)) {
        return false;
    }
    name.remove_prefix(ofFile.size());
    return name.starts_with(unfinishedMark) && name.find('.', unfinishedMark.size()) == std::string_view::npos;
}

/// Removes the temporary file unless a running writer has locked it.
void removeUnfinished(const std::filesystem::path& file) {
    const FileDescriptor descriptor(::open(file.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOFOLLOW));
    if (descriptor.isOpen() && ::flock(descriptor.get(), LOCK_EX | LOCK_NB) == 0) {
        ::unlink(file.c_str());
    }
}

void keepPermissions(const std::filesystem::path& of, int descriptor) {
    struct stat status {};
    if (::stat(of.c_str(), &status) == 0) {
        // When this fails, the file keeps the stricter permissions of a temporary file.
        [[maybe_unused]] const int ignored = ::fchmod(descriptor, status.st_mode & 07777);
    }
}

}  // namespace

std::error_code notARegularFile() {
    static const FileErrors errors;
    return {1, errors};
}

std::error_code replaceFile(const std::filesystem::path& file, std::string_view content) {
    std::error_code error;
    const auto target = withoutLinks(file, error);
    if (error) {
        return error;
    }
    if (const auto there = std::filesystem::symlink_status(target, error);
        std::filesystem::exists(there) && !std::filesystem::is_regular_file(there)) {
        return notARegularFile();
    }
    if (auto folderError = makeFolders(target.parent_path())) {
        return folderError;
    }
    std::string temporary = target.string() + std::string(unfinishedMark) + std::string(uniquePart);
    FileDescriptor descriptor(::mkostemp(temporary.data(), O_CLOEXEC));
    if (!descriptor.isOpen()) {
        return lastError();
    }
    // The lock shows other processes that this file's writer is running. Without it, another process may remove the
    // file, and then this write fails.
    ::flock(descriptor.get(), LOCK_EX | LOCK_NB);
    keepPermissions(target, descriptor.get());
    const bool isStored = writeAll(descriptor.get(), content) && ::fsync(descriptor.get()) == 0 && descriptor.close() &&
                          ::rename(temporary.c_str(), target.c_str()) == 0;
    if (!isStored) {
        error = lastError();
        ::unlink(temporary.c_str());
        return error;
    }
    // The new name survives a power failure only when the folder is on the disk too.
    const FileDescriptor folder(::open(target.parent_path().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (folder.isOpen()) {
        ::fsync(folder.get());
    }
    return {};
}

void removeUnfinishedFiles(const std::filesystem::path& file) {
    std::error_code error;
    const auto target = withoutLinks(file, error);
    const auto name = target.filename().string();
    for (std::filesystem::directory_iterator at(target.parent_path(), error), end; !error && at != end;
         at.increment(error)) {
        std::error_code notThere;
        if (isUnfinished(at->path().filename().string(), name) &&
            std::filesystem::is_regular_file(at->symlink_status(notThere))) {
            removeUnfinished(at->path());
        }
    }
}

std::string readFile(const std::filesystem::path& file, std::size_t largest, std::error_code& error) {
    error.clear();
    // Opening a pipe would block without this flag.
    const FileDescriptor descriptor(::open(file.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    if (!descriptor.isOpen()) {
        error = lastError();
        return {};
    }
    struct stat status {};
    if (::fstat(descriptor.get(), &status) != 0 || !S_ISREG(status.st_mode)) {
        error = notARegularFile();
        return {};
    }
    std::string content;
    char buffer[16384];
    while (true) {
        const ssize_t count = ::read(descriptor.get(), buffer, sizeof buffer);
        if (count < 0 && errno == EINTR) {
            continue;
        }
        if (count < 0) {
            error = lastError();
            return {};
        }
        if (count == 0) {
            return content;
        }
        content.append(buffer, static_cast<std::size_t>(count));
        if (content.size() > largest) {
            error = std::make_error_code(std::errc::file_too_large);
            return {};
        }
    }
}

}  // namespace ferrowyn

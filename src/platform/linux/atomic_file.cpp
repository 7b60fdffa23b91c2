#include "platform/linux/atomic_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <utility>

namespace ferrowyn {

namespace {

/// What the desktop's rules ask of folders below the configuration home.
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
    /// False when closing told of a write that failed late.
    [[nodiscard]] bool close() { return ::close(std::exchange(descriptor_, -1)) == 0; }

private:
    int descriptor_;
};

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

void keepPermissions(const std::filesystem::path& of, int descriptor) {
    struct stat status {};
    if (::stat(of.c_str(), &status) == 0) {
        // A failure leaves the stricter permissions of a temporary file.
        [[maybe_unused]] const int ignored = ::fchmod(descriptor, status.st_mode & 07777);
    }
}

}  // namespace

std::error_code replaceFile(const std::filesystem::path& file, std::string_view content) {
    std::error_code linkError;
    const auto target =
        std::filesystem::is_symlink(file, linkError) ? std::filesystem::weakly_canonical(file, linkError) : file;
    if (linkError && linkError != std::errc::no_such_file_or_directory) {
        return linkError;
    }
    if (auto error = makeFolders(target.parent_path())) {
        return error;
    }
    std::string temporary = target.string() + ".XXXXXX";
    FileDescriptor descriptor(::mkostemp(temporary.data(), O_CLOEXEC));
    if (!descriptor.isOpen()) {
        return lastError();
    }
    keepPermissions(target, descriptor.get());
    const bool isStored = writeAll(descriptor.get(), content) && ::fsync(descriptor.get()) == 0 && descriptor.close() &&
                          ::rename(temporary.c_str(), target.c_str()) == 0;
    if (!isStored) {
        const auto error = lastError();
        ::unlink(temporary.c_str());
        return error;
    }
    // The new name is safe only when the folder is on the disk too.
    const FileDescriptor folder(::open(target.parent_path().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (folder.isOpen()) {
        ::fsync(folder.get());
    }
    return {};
}

std::string readFile(const std::filesystem::path& file, std::size_t largest, std::error_code& error) {
    error.clear();
    // Not blocking: the path may turn out to be a pipe.
    const FileDescriptor descriptor(::open(file.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    if (!descriptor.isOpen()) {
        error = lastError();
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

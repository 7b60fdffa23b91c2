#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <system_error>

namespace ferrowyn {

/// Replaces the file's content in one step: whoever reads it, also after a power failure, finds the old content or the
/// new one. Missing folders are made, the file's permissions are kept, and a link is followed. An error leaves the old
/// file as it was and nothing beside it. Waits for the disk.
[[nodiscard]] std::error_code replaceFile(const std::filesystem::path& file, std::string_view content);

/// The whole content of the file; `error` is set, and the answer empty, when it is missing, unreadable or larger than
/// `largest` bytes.
[[nodiscard]] std::string readFile(const std::filesystem::path& file, std::size_t largest, std::error_code& error);

}  // namespace ferrowyn

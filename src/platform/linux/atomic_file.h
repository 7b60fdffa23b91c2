#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <system_error>

namespace ferrowyn {

/// Replaces the file's content in one step: whoever reads it, also after a power failure, finds the old content or the
/// new one. Missing folders are made, the file's permissions are kept, and a link is followed. An error leaves what was
/// there as it was and nothing beside it; that it is no regular file (a device, a pipe, a folder) is one. Waits for the
/// disk.
[[nodiscard]] std::error_code replaceFile(const std::filesystem::path& file, std::string_view content);

/// Removes what writers of this file that were killed have left beside it. Those of writers that live, in any process,
/// stay.
void removeUnfinishedFiles(const std::filesystem::path& file);

/// The whole content of the file; `error` is set, and the answer empty, when it is missing, unreadable, no regular file
/// or larger than `largest` bytes.
[[nodiscard]] std::string readFile(const std::filesystem::path& file, std::size_t largest, std::error_code& error);

/// "it is not a regular file".
[[nodiscard]] std::error_code notARegularFile();

}  // namespace ferrowyn

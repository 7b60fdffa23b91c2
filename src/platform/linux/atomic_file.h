#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <system_error>

namespace ferrowyn {

/// Replaces the file's content atomically: a reader finds the old content or the new one, also after a power failure.
/// Makes missing folders, keeps the file's permissions and follows links. After an error the old file is unchanged and
/// no temporary file is left. Fails when the path is not a regular file (a device, a pipe, a folder). Waits for the
/// disk.
[[nodiscard]] std::error_code replaceFile(const std::filesystem::path& file, std::string_view content);

/// Removes the temporary files that killed writers of this file have left. Those of running writers, in any process,
/// stay.
void removeUnfinishedFiles(const std::filesystem::path& file);

/// The whole content of the file. When it is missing, unreadable, not a regular file or larger than `largest` bytes,
/// `error` is set and the result is empty.
[[nodiscard]] std::string readFile(const std::filesystem::path& file, std::size_t largest, std::error_code& error);

/// The error whose message is "it is not a regular file".
[[nodiscard]] std::error_code notARegularFile();

}  // namespace ferrowyn

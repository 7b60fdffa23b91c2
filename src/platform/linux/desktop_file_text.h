#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// How desktop files write texts and command lines.
namespace ferrowyn::desktop_file {

[[nodiscard]] std::string_view trimmed(std::string_view text);

/// A value of the type "string", with its escapes resolved and written.
[[nodiscard]] std::string unescaped(std::string_view value);
[[nodiscard]] std::string escaped(std::string_view text);

/// One argument of an Exec line, quoted where the rules ask for it, before the escapes of a string.
[[nodiscard]] std::string quotedArgument(std::string_view argument);
/// The arguments of an Exec line, after the escapes of a string were resolved; what stands for files is left out.
/// Nothing when the line is not quoted rightly.
[[nodiscard]] std::optional<std::vector<std::string>> splitExec(std::string_view line);

}  // namespace ferrowyn::desktop_file

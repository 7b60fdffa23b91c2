#pragma once

/// How desktop files write texts and command lines.

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace ferrowyn {

namespace desktop_file {

[[nodiscard]] std::string_view trimmed(std::string_view text);

/// A value of the type "string", with its escapes resolved and written.
[[nodiscard]] std::string unescaped(std::string_view value);
[[nodiscard]] std::string escaped(std::string_view text);

/// One argument of an Exec line, quoted where the rules ask for it, before the escapes of a string.
[[nodiscard]] std::string quotedArgument(std::string_view argument);
/// The arguments of an Exec line, after the escapes of a string were resolved; what stands for files is left out.
/// Nothing when the line is not quoted rightly.
[[nodiscard]] std::optional<std::vector<std::string>> splitExec(std::string_view line);

}  // namespace desktop_file

/// The text of a desktop file as lines, so that what this program does not write itself (comments, other keys, further
/// groups, the order) survives a change. Keys are those of the group "[Desktop Entry]", without a locale.
class DesktopFileDocument {
public:
    /// With the group and nothing in it.
    DesktopFileDocument();
    /// Nothing when this is no such file (binary, not UTF-8, without the group).
    [[nodiscard]] static std::optional<DesktopFileDocument> parse(std::string_view content);

    /// With the escapes of a string resolved. The last of several entries counts.
    [[nodiscard]] std::optional<std::string> value(std::string_view key) const;
    [[nodiscard]] std::optional<bool> boolean(std::string_view key) const;
    /// The parts of a list that ";" separates; absent when the key is.
    [[nodiscard]] std::optional<std::vector<std::string>> list(std::string_view key) const;
    /// The text is escaped as a string.
    void set(std::string_view key, std::string_view text);
    void remove(std::string_view key);

    /// Whether there is nothing but entries of these keys, once each, without locales or comments.
    [[nodiscard]] bool holdsOnly(std::span<const std::string_view> keys) const;
    [[nodiscard]] std::string text() const;

private:
    struct Line {
        std::string text;
        bool isInEntryGroup = false;
        /// Empty in a line that holds no entry.
        std::string key;
        std::string value;
    };

    std::vector<Line> lines_;
};

}  // namespace ferrowyn

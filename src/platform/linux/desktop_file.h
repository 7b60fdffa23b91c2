#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace ferrowyn {

/// How desktop files write texts and command lines.
namespace desktop_file {

[[nodiscard]] std::string_view trimmed(std::string_view text);

/// Resolves the escapes in a value of the type "string".
[[nodiscard]] std::string unescaped(std::string_view value);
/// Writes a text as a value of the type "string".
[[nodiscard]] std::string escaped(std::string_view text);

/// One argument of an Exec line, quoted where needed. `escaped` is applied to the whole line afterwards.
[[nodiscard]] std::string quotedArgument(std::string_view argument);
/// The arguments of an Exec line, which is `unescaped` already. Codes that stand for files, names and icons are left
/// out. nullopt when a quote is not closed.
[[nodiscard]] std::optional<std::vector<std::string>> splitExec(std::string_view line);

}  // namespace desktop_file

/// The text of a desktop file, kept as lines so that a change preserves comments, other keys, other groups and the
/// order. Keys are those of the group "[Desktop Entry]", without a locale.
class DesktopFileDocument {
public:
    /// A document with an empty group "[Desktop Entry]".
    DesktopFileDocument();
    /// nullopt when the content is not a desktop file (binary, not UTF-8, without the group).
    [[nodiscard]] static std::optional<DesktopFileDocument> parse(std::string_view content);

    /// The value with its escapes resolved; nullopt without the key. When the key occurs twice, the last entry counts.
    [[nodiscard]] std::optional<std::string> value(std::string_view key) const;
    [[nodiscard]] std::optional<bool> boolean(std::string_view key) const;
    /// The parts of a list that ";" separates; nullopt without the key.
    [[nodiscard]] std::optional<std::vector<std::string>> list(std::string_view key) const;
    /// Escapes the text and writes it.
    void set(std::string_view key, std::string_view text);
    void remove(std::string_view key);

    /// Whether the file has only these keys, each at most once, and no comments, locales or other groups.
    [[nodiscard]] bool holdsOnly(std::span<const std::string_view> keys) const;
    [[nodiscard]] std::string text() const;

private:
    struct Line {
        std::string text;
        bool isInEntryGroup = false;
        /// Empty when the line is not an entry.
        std::string key;
        std::string value;
    };

    std::vector<Line> lines_;
};

}  // namespace ferrowyn

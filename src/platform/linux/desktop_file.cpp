#include "platform/linux/desktop_file.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "core/text_encoding.h"

namespace ferrowyn {

namespace desktop_file {

namespace {

constexpr std::string_view blanks = " \t\r";
/// An argument with one of these characters needs quotes.
constexpr std::string_view reserved = " \t\n\"'\\><~|&;$*?#()`";
/// Within quotes these characters need a backslash.
constexpr std::string_view escapedInQuotes = "\"`$\\";

bool contains(std::string_view characters, char character) {
    return characters.find(character) != std::string_view::npos;
}

/// Adds the meaning of "%" and the character after it. Codes for files, names and icons add nothing.
void addFieldCode(std::string& argument, char code) {
    if (code == '%') {
        argument += '%';
    }
}

}  // namespace

std::string_view trimmed(std::string_view text) {
    const auto first = text.find_first_not_of(blanks);
    return first == std::string_view::npos ? std::string_view{}
                                           : text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

std::string unescaped(std::string_view value) {
    std::string text;
    for (std::size_t at = 0; at < value.size(); ++at) {
        if (value[at] != '\\' || at + 1 == value.size()) {
            text += value[at];
            continue;
        }
        switch (value[++at]) {
            case 's':
                text += ' ';
                break;
            case 'n':
                text += '\n';
                break;
            case 't':
                text += '\t';
                break;
            case 'r':
                text += '\r';
                break;
            default:
                text += value[at];
        }
    }
    return text;
}

std::string escaped(std::string_view text) {
    std::string value;
    for (const char character : text) {
        switch (character) {
            case '\n':
                value += "\\n";
                break;
            case '\t':
                value += "\\t";
                break;
            case '\r':
                value += "\\r";
                break;
            case '\\':
                value += "\\\\";
                break;
            case ' ':
                // A reader drops blanks at the beginning.
                value += value.empty() ? "\\s" : " ";
                break;
            default:
                value += character;
        }
    }
    return value;
}

std::string quotedArgument(std::string_view argument) {
    const bool needsQuotes =
        argument.empty() || std::ranges::any_of(argument, [](char character) { return contains(reserved, character); });
    std::string quoted;
    for (const char character : argument) {
        if (needsQuotes && contains(escapedInQuotes, character)) {
            quoted += '\\';
        }
        quoted += character == '%' ? "%%" : std::string(1, character);
    }
    return needsQuotes ? '"' + quoted + '"' : quoted;
}

std::optional<std::vector<std::string>> splitExec(std::string_view line) {
    std::vector<std::string> arguments;
    std::string argument;
    bool isQuoted = false;
    for (std::size_t at = 0; at < line.size(); ++at) {
        const char character = line[at];
        const bool hasNext = at + 1 < line.size();
        if (!isQuoted && contains(" \t\n", character)) {
            if (!argument.empty()) {
                arguments.push_back(std::exchange(argument, {}));
            }
        } else if (character == '"') {
            isQuoted = !isQuoted;
        } else if (character == '\\' && hasNext) {
            argument += line[++at];
        } else if (character == '%' && hasNext) {
            addFieldCode(argument, line[++at]);
        } else {
            argument += character;
        }
    }
    if (isQuoted) {
        return std::nullopt;
    }
    if (!argument.empty()) {
        arguments.push_back(argument);
    }
    return arguments;
}

}  // namespace desktop_file

namespace {

constexpr std::string_view entryGroup = "[Desktop Entry]";

}  // namespace

DesktopFileDocument::DesktopFileDocument() {
    lines_.push_back({std::string(entryGroup), true, {}, {}});
}

std::optional<DesktopFileDocument> DesktopFileDocument::parse(std::string_view content) {
    if (content.find('\0') != std::string_view::npos || !text::isValidUtf8(content)) {
        return std::nullopt;
    }
    DesktopFileDocument document;
    document.lines_.clear();
    bool isInEntryGroup = false;
    bool hasEntryGroup = false;
    while (!content.empty()) {
        const auto end = std::min(content.find('\n'), content.size());
        const auto whole = content.substr(0, end);
        content.remove_prefix(std::min(end + 1, content.size()));
        const auto line = desktop_file::trimmed(whole);
        if (line.starts_with('[')) {
            isInEntryGroup = line == entryGroup;
            hasEntryGroup = hasEntryGroup || isInEntryGroup;
        }
        Line parsed{std::string(whole), isInEntryGroup, {}, {}};
        const auto equals = line.find('=');
        if (!line.starts_with('[') && !line.starts_with('#') && equals != std::string_view::npos) {
            parsed.key = desktop_file::trimmed(line.substr(0, equals));
            parsed.value = desktop_file::unescaped(desktop_file::trimmed(line.substr(equals + 1)));
        }
        document.lines_.push_back(std::move(parsed));
    }
    return hasEntryGroup ? std::optional(std::move(document)) : std::nullopt;
}

std::optional<std::string> DesktopFileDocument::value(std::string_view key) const {
    const auto found = std::find_if(lines_.rbegin(), lines_.rend(),
                                    [key](const Line& line) { return line.isInEntryGroup && line.key == key; });
    return found != lines_.rend() ? std::optional(found->value) : std::nullopt;
}

std::optional<bool> DesktopFileDocument::boolean(std::string_view key) const {
    const auto text = value(key);
    // Old files use 1 and 0.
    return text ? std::optional(*text == "true" || *text == "1") : std::nullopt;
}

std::optional<std::vector<std::string>> DesktopFileDocument::list(std::string_view key) const {
    const auto text = value(key);
    if (!text) {
        return std::nullopt;
    }
    std::vector<std::string> parts;
    for (std::string_view rest = *text; !rest.empty();) {
        const auto end = std::min(rest.find(';'), rest.size());
        if (end > 0) {
            parts.emplace_back(rest.substr(0, end));
        }
        rest.remove_prefix(std::min(end + 1, rest.size()));
    }
    return parts;
}

void DesktopFileDocument::set(std::string_view key, std::string_view text) {
    if (value(key) == text) {
        return;
    }
    Line entry{std::string(key) + "=" + desktop_file::escaped(text), true, std::string(key), std::string(text)};
    const auto existing = std::find_if(lines_.rbegin(), lines_.rend(),
                                       [key](const Line& line) { return line.isInEntryGroup && line.key == key; });
    if (existing != lines_.rend()) {
        *existing = std::move(entry);
        return;
    }
    // After the group's last entry, before the blank lines at its end.
    const auto last = std::find_if(lines_.rbegin(), lines_.rend(), [](const Line& line) {
        return line.isInEntryGroup && (!line.key.empty() || line.text.find('[') != std::string::npos);
    });
    lines_.insert(last.base(), std::move(entry));
}

void DesktopFileDocument::remove(std::string_view key) {
    std::erase_if(lines_, [key](const Line& line) { return line.isInEntryGroup && line.key == key; });
}

bool DesktopFileDocument::holdsOnly(std::span<const std::string_view> keys) const {
    std::vector<std::string_view> seen;
    return std::ranges::all_of(lines_, [&](const Line& line) {
        const auto content = desktop_file::trimmed(line.text);
        if (content.empty() || content == entryGroup) {
            return true;
        }
        const bool isFirst = std::ranges::find(seen, line.key) == seen.end();
        seen.push_back(line.key);
        return isFirst && line.isInEntryGroup && std::ranges::find(keys, line.key) != keys.end();
    });
}

std::string DesktopFileDocument::text() const {
    std::string text;
    for (const auto& line : lines_) {
        text += line.text + "\n";
    }
    return text;
}

}  // namespace ferrowyn

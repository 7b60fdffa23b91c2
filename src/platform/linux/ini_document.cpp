#include "platform/linux/ini_document.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <system_error>
#include <type_traits>
#include <utility>

#include "core/text_encoding.h"

namespace ferrowyn {

namespace {

/// Without spaces and tabs at both ends.
std::string_view trimmedBlanks(std::string_view text) {
    const auto first = text.find_first_not_of(" \t");
    return first == std::string_view::npos ? std::string_view{}
                                           : text.substr(first, text.find_last_not_of(" \t") - first + 1);
}

/// Takes the part of an escape that follows the backslash and returns the character it means.
std::optional<char> takeEscape(std::string_view& rest) {
    if (rest.empty()) {
        return std::nullopt;
    }
    const char letter = rest.front();
    rest.remove_prefix(1);
    switch (letter) {
        case 'n':
            return '\n';
        case 'r':
            return '\r';
        case 't':
            return '\t';
        case 'x':
            break;
        default:
            return letter;
    }
    unsigned char byte = 0;
    const auto digits = rest.substr(0, 2);
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), byte, 16);
    if (error != std::errc{} || end != digits.data() + 2) {
        return std::nullopt;
    }
    rest.remove_prefix(2);
    return static_cast<char>(byte);
}

/// Takes a quoted text from the front of `rest`; nullopt when there is none.
std::optional<std::string> takeQuotedIniText(std::string_view& rest) {
    if (!rest.starts_with('"')) {
        return std::nullopt;
    }
    rest.remove_prefix(1);
    std::string text;
    while (!rest.empty()) {
        const char character = rest.front();
        rest.remove_prefix(1);
        if (character == '"') {
            return text;
        }
        if (character != '\\') {
            text += character;
        } else if (const auto escaped = takeEscape(rest)) {
            text += *escaped;
        } else {
            return std::nullopt;
        }
    }
    return std::nullopt;
}

std::string quotedIniText(std::string_view content) {
    // A file name may hold bytes that are not UTF-8. Unescaped, they would make the whole file unreadable.
    const bool isText = text::isValidUtf8(content);
    std::string quoted = "\"";
    for (const char character : content) {
        const auto byte = static_cast<unsigned char>(character);
        if (character == '"' || character == '\\') {
            quoted += {'\\', character};
        } else if (character == '\n') {
            quoted += "\\n";
        } else if (byte < 0x20 || byte == 0x7F || (byte >= 0x80 && !isText)) {
            quoted += fmt::format("\\x{:02x}", byte);
        } else {
            quoted += character;
        }
    }
    return quoted + "\"";
}

std::string formatReal(double number) {
    // The shortest text that reads back as the same number. ".0" distinguishes a whole number from an integer.
    char buffer[32];
    const auto [end, error] = std::to_chars(buffer, buffer + sizeof buffer, number);
    std::string text(buffer, end);
    if (std::isfinite(number) && text.find_first_of(".e") == std::string::npos) {
        text += ".0";
    }
    return text;
}

std::string formatList(const std::vector<std::string>& items) {
    std::string text = "[";
    for (const auto& item : items) {
        text += (text.size() > 1 ? ", " : "") + quotedIniText(item);
    }
    return text + "]";
}

/// The value as it is written in the file.
std::string formatIniValue(const DefaultsValue& value) {
    return std::visit(
        [](const auto& held) -> std::string {
            using Held = std::decay_t<decltype(held)>;
            if constexpr (std::is_same_v<Held, bool>) {
                return held ? "true" : "false";
            } else if constexpr (std::is_same_v<Held, std::int64_t>) {
                return std::to_string(held);
            } else if constexpr (std::is_same_v<Held, double>) {
                return formatReal(held);
            } else if constexpr (std::is_same_v<Held, std::string>) {
                return quotedIniText(held);
            } else {
                return formatList(held);
            }
        },
        value);
}

template <typename Number>
std::optional<Number> wholeNumber(std::string_view text) {
    Number number{};
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc{} || end != text.data() + text.size()) {
        return std::nullopt;
    }
    return number;
}

void skipBlanks(std::string_view& rest) {
    rest.remove_prefix(std::min(rest.find_first_not_of(" \t"), rest.size()));
}

bool takeCharacter(std::string_view& rest, char character) {
    skipBlanks(rest);
    if (!rest.starts_with(character)) {
        return false;
    }
    rest.remove_prefix(1);
    return true;
}

std::optional<std::vector<std::string>> parseList(std::string_view rest) {
    std::vector<std::string> items;
    takeCharacter(rest, '[');
    if (takeCharacter(rest, ']')) {
        return trimmedBlanks(rest).empty() ? std::optional(items) : std::nullopt;
    }
    do {
        skipBlanks(rest);
        auto item = takeQuotedIniText(rest);
        if (!item) {
            return std::nullopt;
        }
        items.push_back(*std::move(item));
    } while (takeCharacter(rest, ','));
    const bool isClosed = takeCharacter(rest, ']') && trimmedBlanks(rest).empty();
    return isClosed ? std::optional(items) : std::nullopt;
}

DefaultsValue parseBareValue(std::string_view text) {
    if (text == "true" || text == "false") {
        return text == "true";
    }
    if (const auto integer = wholeNumber<std::int64_t>(text)) {
        return *integer;
    }
    if (const auto real = wholeNumber<double>(text)) {
        return *real;
    }
    return std::string(text);
}

/// nullopt when the value begins like a quoted text or a list but is not one.
std::optional<DefaultsValue> parseIniValue(std::string_view text) {
    text = trimmedBlanks(text);
    if (text.starts_with('"')) {
        auto quoted = takeQuotedIniText(text);
        return quoted && trimmedBlanks(text).empty() ? std::optional<DefaultsValue>(*std::move(quoted)) : std::nullopt;
    }
    if (text.starts_with('[')) {
        auto list = parseList(text);
        return list ? std::optional<DefaultsValue>(*std::move(list)) : std::nullopt;
    }
    return parseBareValue(text);
}

bool isPlain(std::string_view text) {
    return !text.empty() && std::ranges::all_of(text, [](char character) {
        return (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z') ||
               (character >= '0' && character <= '9') || character == '_' || character == '-' || character == '.';
    });
}

/// The group and the key within it. A key whose first part cannot name a group is written above all groups under its
/// full name.
std::pair<std::string_view, std::string_view> splitKey(std::string_view key) {
    const auto dot = key.find('.');
    if (dot == std::string_view::npos || !isPlain(key.substr(0, dot))) {
        return {{}, key};
    }
    return {key.substr(0, dot), key.substr(dot + 1)};
}

/// The key before "=", and the text after it; nullopt when the line is not an entry.
std::optional<std::pair<std::string, std::string_view>> splitEntry(std::string_view line) {
    if (line.starts_with('"')) {
        auto key = takeQuotedIniText(line);
        line = trimmedBlanks(line);
        return key && line.starts_with('=') ? std::optional(std::pair{*std::move(key), line.substr(1)}) : std::nullopt;
    }
    const auto equals = line.find('=');
    if (equals == std::string_view::npos || equals == 0) {
        return std::nullopt;
    }
    return std::pair{std::string(trimmedBlanks(line.substr(0, equals))), line.substr(equals + 1)};
}

std::string entryText(std::string_view name, const DefaultsValue& value) {
    return (isPlain(name) ? std::string(name) : quotedIniText(name)) + "=" + formatIniValue(value);
}

}  // namespace

std::optional<IniDocument> IniDocument::parse(std::string_view content) {
    if (content.find('\0') != std::string_view::npos || !text::isValidUtf8(content)) {
        return std::nullopt;
    }
    constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";
    if (content.starts_with(byteOrderMark)) {
        content.remove_prefix(byteOrderMark.size());
    }
    IniDocument document;
    std::string group;
    while (!content.empty()) {
        const auto end = std::min(content.find('\n'), content.size());
        auto line = parseLine(content.substr(0, end), group);
        if (!line) {
            return std::nullopt;
        }
        group = line->group;
        document.lines_.push_back(*std::move(line));
        content.remove_prefix(std::min(end + 1, content.size()));
    }
    return document;
}

std::optional<IniDocument::Line> IniDocument::parseLine(std::string_view text, const std::string& currentGroup) {
    const auto textEnd = text.find_last_not_of('\r') + 1;
    Line line{
        std::string(text.substr(0, textEnd)), std::string(text.substr(textEnd)), currentGroup, false, std::nullopt, {}};
    const auto content = trimmedBlanks(line.text);
    if (content.empty() || content.starts_with('#') || content.starts_with(';')) {
        return line;
    }
    if (content.starts_with('[')) {
        if (!content.ends_with(']')) {
            return std::nullopt;
        }
        line.group = trimmedBlanks(content.substr(1, content.size() - 2));
        line.opensGroup = true;
        return line;
    }
    auto entry = splitEntry(content);
    auto value = entry ? parseIniValue(entry->second) : std::nullopt;
    if (!value) {
        return std::nullopt;
    }
    line.name = std::move(entry->first);
    line.value = *std::move(value);
    return line;
}

std::map<std::string, DefaultsValue, std::less<>> IniDocument::values() const {
    std::map<std::string, DefaultsValue, std::less<>> values;
    for (const auto& line : lines_) {
        if (line.name) {
            values.insert_or_assign(line.fullKey(), line.value);
        }
    }
    return values;
}

void IniDocument::set(std::string_view key, const DefaultsValue& value) {
    // When a key occurs twice, the last entry counts.
    const auto existing = std::find_if(lines_.rbegin(), lines_.rend(),
                                       [key](const Line& line) { return line.name && line.fullKey() == key; });
    if (existing == lines_.rend()) {
        const auto [group, name] = splitKey(key);
        add(group, name, value);
    } else if (existing->value != value) {
        existing->text = entryText(*existing->name, value);
        existing->value = value;
    }
}

void IniDocument::add(std::string_view group, std::string_view name, const DefaultsValue& value) {
    const auto belongsToGroup = [group](const Line& line) {
        return line.group == group && (line.opensGroup || line.name.has_value());
    };
    const std::string lineEnd = lines_.empty() || lines_.front().end.empty() ? "" : "\r";
    const auto last = std::find_if(lines_.rbegin(), lines_.rend(), belongsToGroup);
    auto place = last.base();
    if (last == lines_.rend() && group.empty()) {
        // Entries without a group must stand above all groups.
        place = std::ranges::find(lines_, true, &Line::opensGroup);
    } else if (last == lines_.rend()) {
        if (!lines_.empty()) {
            lines_.push_back({{}, lineEnd, {}, false, std::nullopt, {}});
        }
        lines_.push_back({"[" + std::string(group) + "]", lineEnd, std::string(group), true, std::nullopt, {}});
        place = lines_.end();
    }
    lines_.insert(place, {entryText(name, value), lineEnd, std::string(group), false, std::string(name), value});
}

std::string IniDocument::text() const {
    std::string text;
    for (const auto& line : lines_) {
        text += line.text + line.end + "\n";
    }
    return text;
}

}  // namespace ferrowyn

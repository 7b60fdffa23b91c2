#include "platform/linux/ini_document.h"

#include <algorithm>
#include <utility>

#include "core/text_encoding.h"
#include "platform/linux/ini_value.h"

namespace ferrowyn {

namespace {

bool isPlain(std::string_view text) {
    return !text.empty() && std::ranges::all_of(text, [](char character) {
        return (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z') ||
               (character >= '0' && character <= '9') || character == '_' || character == '-' || character == '.';
    });
}

/// Group and key within it. A key that no group fits stands above all groups under its full name.
std::pair<std::string_view, std::string_view> splitKey(std::string_view key) {
    const auto dot = key.find('.');
    if (dot == std::string_view::npos || !isPlain(key.substr(0, dot))) {
        return {{}, key};
    }
    return {key.substr(0, dot), key.substr(dot + 1)};
}

/// The key before "=", and what follows it; nothing when the line is no entry.
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
    // The last entry is the one that counts when someone wrote a key twice.
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

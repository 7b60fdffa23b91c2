#include "platform/linux/desktop_file_document.h"

#include <algorithm>
#include <iterator>

#include "core/text_encoding.h"
#include "platform/linux/desktop_file_text.h"

namespace ferrowyn {

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
    // Old files write digits.
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
    // After the group's last entry, before the blank lines that part it from the next group.
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

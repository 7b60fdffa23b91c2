#include "platform/linux/ini_value.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <system_error>
#include <type_traits>
#include <vector>

#include "core/text_encoding.h"

namespace ferrowyn {

namespace {

std::string formatReal(double number) {
    // The shortest text that reads back as the very same number, with something that tells it from an integer.
    char buffer[32];
    const auto [end, error] = std::to_chars(buffer, buffer + sizeof buffer, number);
    std::string text(buffer, end);
    if (std::isfinite(number) && text.find_first_of(".e") == std::string::npos) {
        text += ".0";
    }
    return text;
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

/// What the text after a backslash stands for.
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

std::string formatList(const std::vector<std::string>& items) {
    std::string text = "[";
    for (const auto& item : items) {
        text += (text.size() > 1 ? ", " : "") + quotedIniText(item);
    }
    return text + "]";
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

}  // namespace

std::string_view trimmedBlanks(std::string_view text) {
    const auto first = text.find_first_not_of(" \t");
    return first == std::string_view::npos ? std::string_view{}
                                           : text.substr(first, text.find_last_not_of(" \t") - first + 1);
}

std::string quotedIniText(std::string_view content) {
    // Bytes that are no UTF-8 (a file name can hold any) would make the whole file unreadable.
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

}  // namespace ferrowyn

#include "platform/linux/desktop_file_text.h"

#include <algorithm>
#include <utility>

namespace ferrowyn::desktop_file {

namespace {

constexpr std::string_view blanks = " \t\r";
/// What may not stand outside of quotes.
constexpr std::string_view reserved = " \t\n\"'\\><~|&;$*?#()`";
/// What is escaped within quotes.
constexpr std::string_view escapedInQuotes = "\"`$\\";

bool contains(std::string_view characters, char character) {
    return characters.find(character) != std::string_view::npos;
}

/// Adds what "%" and the character after it stand for: codes for files, names and icons become nothing.
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

}  // namespace ferrowyn::desktop_file

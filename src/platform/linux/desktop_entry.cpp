#include "platform/linux/desktop_entry.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cstddef>
#include <limits>

#include "platform/linux/desktop_file.h"

namespace ferrowyn {

namespace {

using desktop_file::trimmed;
using desktop_file::unescaped;

/// Takes the next argument of a command line, which may be quoted.
std::string takeArgument(std::string_view& rest) {
    rest = trimmed(rest);
    std::string argument;
    bool isQuoted = false;
    std::size_t at = 0;
    for (; at < rest.size() && (isQuoted || rest[at] != ' '); ++at) {
        if (rest[at] == '"') {
            isQuoted = !isQuoted;
        } else if (rest[at] == '\\' && isQuoted && at + 1 < rest.size()) {
            argument += rest[++at];
        } else {
            argument += rest[at];
        }
    }
    rest.remove_prefix(at);
    return argument;
}

std::string fileName(std::string_view path) {
    const auto slash = path.rfind('/');
    return std::string(slash == std::string_view::npos ? path : path.substr(slash + 1));
}

std::string executableOf(std::string_view exec) {
    auto program = fileName(takeArgument(exec));
    if (program == "env") {
        do {
            program = fileName(takeArgument(exec));
        } while (program.find('=') != std::string::npos || program.starts_with('-'));
    }
    return program;
}

/// One line of the file, "key[locale]=value".
struct KeyLine {
    std::string_view key;
    std::string_view locale;
    std::string_view value;
};

KeyLine splitLine(std::string_view line) {
    const auto equals = std::min(line.find('='), line.size());
    KeyLine parts{trimmed(line.substr(0, equals)), {}, trimmed(line.substr(std::min(equals + 1, line.size())))};
    if (const auto bracket = parts.key.find('['); bracket != std::string_view::npos && parts.key.ends_with(']')) {
        parts.locale = parts.key.substr(bracket + 1, parts.key.size() - bracket - 2);
        parts.key = parts.key.substr(0, bracket);
    }
    return parts;
}

void applyKey(DesktopEntry& entry, const KeyLine& line) {
    if (line.key == "Icon") {
        entry.icon = unescaped(line.value);
    } else if (line.key == "StartupWMClass") {
        entry.startupWmClass = unescaped(line.value);
    } else if (line.key == "Exec") {
        entry.executable = executableOf(unescaped(line.value));
    } else if (line.key == "Hidden") {
        entry.isHidden = line.value == "true";
    } else if (line.key == "NoDisplay") {
        entry.noDisplay = line.value == "true";
    }
}

}  // namespace

std::vector<std::string> localeVariants(std::string_view locale) {
    std::string_view modifier;
    if (const auto at = locale.find('@'); at != std::string_view::npos) {
        modifier = locale.substr(at);
        locale = locale.substr(0, at);
    }
    locale = locale.substr(0, locale.find('.'));
    if (locale.empty() || locale == "C" || locale == "POSIX") {
        return {};
    }
    std::vector<std::string_view> bases{locale};
    if (const auto language = locale.substr(0, locale.find('_')); language != locale) {
        bases.push_back(language);
    }
    std::vector<std::string> variants;
    for (const auto base : bases) {
        if (!modifier.empty()) {
            variants.push_back(std::string(base) + std::string(modifier));
        }
        variants.emplace_back(base);
    }
    return variants;
}

std::optional<DesktopEntry> parseDesktopEntry(std::string_view text, const std::vector<std::string>& locales) {
    DesktopEntry entry;
    bool isInGroup = false;
    bool isApplication = false;
    // The index in `locales` of the best name so far. A name without a locale ranks after all of them.
    std::size_t nameRank = std::numeric_limits<std::size_t>::max();
    while (!text.empty()) {
        const auto end = std::min(text.find('\n'), text.size());
        const auto line = trimmed(text.substr(0, end));
        text.remove_prefix(std::min(end + 1, text.size()));
        if (line.starts_with('[')) {
            if (isInGroup) {
                break;  // The groups that follow describe actions.
            }
            isInGroup = line == "[Desktop Entry]";
            continue;
        }
        if (!isInGroup || line.empty() || line.starts_with('#')) {
            continue;
        }
        const auto parts = splitLine(line);
        if (parts.key == "Name") {
            const auto place = std::ranges::find(locales, parts.locale);
            const auto rank = static_cast<std::size_t>(place - locales.begin());
            const bool fits = parts.locale.empty() || place != locales.end();
            if (fits && rank < nameRank) {
                entry.name = unescaped(parts.value);
                nameRank = rank;
            }
        } else if (parts.key == "Type") {
            isApplication = parts.value == "Application";
        } else if (parts.locale.empty()) {
            applyKey(entry, parts);
        }
    }
    // A deleted entry need not describe anything.
    if (!entry.isHidden && (!isApplication || entry.name.empty())) {
        return std::nullopt;
    }
    return entry;
}

}  // namespace ferrowyn

#include "services/web_address.h"

#include <fmt/format.h>

#include <algorithm>
#include <optional>

namespace ferrowyn {

namespace {

bool isLetter(char character) {
    return (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z');
}

bool isDigit(char character) {
    return character >= '0' && character <= '9';
}

bool isHexDigit(char character) {
    return isDigit(character) || (character >= 'a' && character <= 'f') || (character >= 'A' && character <= 'F');
}

bool isUnreserved(char character) {
    return isLetter(character) || isDigit(character) ||
           std::string_view("-._~").find(character) != std::string_view::npos;
}

/// Whether the text has only unreserved characters, percent escapes and characters of `further`.
bool consistsOf(std::string_view text, std::string_view further) {
    for (std::size_t at = 0; at < text.size(); ++at) {
        if (text[at] == '%') {
            if (at + 2 >= text.size() || !isHexDigit(text[at + 1]) || !isHexDigit(text[at + 2])) {
                return false;
            }
            at += 2;
        } else if (!isUnreserved(text[at]) && further.find(text[at]) == std::string_view::npos) {
            return false;
        }
    }
    return true;
}

constexpr std::string_view inQuery = "!$&'()*+,;=:@/?";
constexpr std::string_view inPath = "!$&'()*+,;=:@/";
constexpr std::string_view inUser = "!$&'()*+,;=:";
constexpr std::string_view inHost = "!$&'()*+,;=";

struct Address {
    std::string_view scheme;
    /// What stands between "//" and the path; absent without "//".
    std::optional<std::string_view> authority;
    std::string_view path;
    std::string_view query;
    std::string_view fragment;
};

/// Removes the first `separator` and everything after it from the text. Returns what followed the separator.
std::string_view cutOff(std::string_view& text, char separator) {
    const auto at = std::min(text.find(separator), text.size());
    const auto rest = text.substr(std::min(at + 1, text.size()));
    text = text.substr(0, at);
    return rest;
}

Address split(std::string_view text) {
    Address address;
    address.fragment = cutOff(text, '#');
    address.query = cutOff(text, '?');
    if (const auto colon = text.find(':'); colon != std::string_view::npos && colon < text.find('/')) {
        address.scheme = text.substr(0, colon + 1);
        text.remove_prefix(colon + 1);
    }
    if (text.starts_with("//")) {
        text.remove_prefix(2);
        const auto slash = std::min(text.find('/'), text.size());
        address.authority = text.substr(0, slash);
        text.remove_prefix(slash);
    }
    address.path = text;
    return address;
}

/// `scheme` includes its colon; it is empty in a relative address.
bool isScheme(std::string_view scheme) {
    if (scheme.empty()) {
        return true;
    }
    scheme.remove_suffix(1);
    return !scheme.empty() && isLetter(scheme.front()) && std::ranges::all_of(scheme, [](char character) {
        return isLetter(character) || isDigit(character) || character == '+' || character == '-' || character == '.';
    });
}

struct Authority {
    std::string_view user;
    std::string_view host;
    std::string_view port;
};

Authority splitAuthority(std::string_view text) {
    Authority authority;
    if (const auto at = text.find('@'); at != std::string_view::npos) {
        authority.user = text.substr(0, at);
        text.remove_prefix(at + 1);
    }
    // An IPv6 address contains colons.
    const auto hostEnd = text.starts_with('[') ? std::min(text.find(']'), text.size() - 1) + 1 : text.find(':');
    authority.host = text.substr(0, hostEnd);
    authority.port = text.substr(std::min(hostEnd, text.size()));
    return authority;
}

bool isHost(std::string_view host) {
    if (!host.starts_with('[')) {
        return consistsOf(host, inHost);
    }
    return host.size() > 2 && host.ends_with(']') &&
           std::ranges::all_of(host.substr(1, host.size() - 2), [](char character) {
               return isHexDigit(character) || character == ':' || character == '.';
           });
}

/// `port` includes its colon, or is empty.
bool isPort(std::string_view port) {
    return port.empty() || (port.front() == ':' && std::ranges::all_of(port.substr(1), isDigit));
}

bool isAuthority(std::string_view text) {
    const auto authority = splitAuthority(text);
    return consistsOf(authority.user, inUser) && isHost(authority.host) && isPort(authority.port);
}

}  // namespace

bool isWellFormedAddress(std::string_view address) {
    if (address.empty()) {
        return false;
    }
    const auto parts = split(address);
    return isScheme(parts.scheme) && (!parts.authority || isAuthority(*parts.authority)) &&
           consistsOf(parts.path, inPath) && consistsOf(parts.query, inQuery) && consistsOf(parts.fragment, inQuery);
}

bool isHttpsAddress(std::string_view address) {
    if (!isWellFormedAddress(address)) {
        return false;
    }
    const auto parts = split(address);
    constexpr std::string_view https = "https:";
    return std::ranges::equal(parts.scheme, https,
                              [](char a, char b) { return a == b || (isLetter(a) && (a | 0x20) == b); }) &&
           parts.authority && !splitAuthority(*parts.authority).host.empty();
}

std::string percentEncoded(std::string_view text) {
    std::string encoded;
    for (const char character : text) {
        if (isUnreserved(character)) {
            encoded += character;
        } else {
            encoded += fmt::format("%{:02X}", static_cast<unsigned char>(character));
        }
    }
    return encoded;
}

}  // namespace ferrowyn

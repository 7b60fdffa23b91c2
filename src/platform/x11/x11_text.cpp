#include "platform/x11/x11_text.h"

#include <cstddef>
#include <cstdint>

#include "platform/x11/x11_compound_text.h"

namespace ferrowyn {
namespace {

constexpr std::string_view replacement = "\xEF\xBF\xBD";

struct Utf8Piece {
    std::size_t length = 1;
    bool isValid = false;
    /// Well-formed so far, but the bytes end before the character does.
    bool isTruncated = false;
};

/// The next character, or the maximal ill-formed piece, of a non-empty text.
Utf8Piece nextPiece(std::string_view text) {
    const auto byte = [&](std::size_t index) { return static_cast<std::uint8_t>(text[index]); };
    const std::uint8_t lead = byte(0);
    if (lead < 0x80) {
        return {1, true, false};
    }
    // The range of the second byte is what rules out overlong forms, surrogates and what is above U+10FFFF.
    std::size_t length = 0;
    std::uint8_t low = 0x80;
    std::uint8_t high = 0xBF;
    if (lead >= 0xC2 && lead <= 0xDF) {
        length = 2;
    } else if (lead >= 0xE0 && lead <= 0xEF) {
        length = 3;
        low = lead == 0xE0 ? 0xA0 : 0x80;
        high = lead == 0xED ? 0x9F : 0xBF;
    } else if (lead >= 0xF0 && lead <= 0xF4) {
        length = 4;
        low = lead == 0xF0 ? 0x90 : 0x80;
        high = lead == 0xF4 ? 0x8F : 0xBF;
    } else {
        return {1, false, false};
    }
    for (std::size_t index = 1; index < length; ++index) {
        if (index >= text.size()) {
            return {index, false, true};
        }
        const std::uint8_t next = byte(index);
        if (next < low || next > high) {
            return {index, false, false};
        }
        low = 0x80;
        high = 0xBF;
    }
    return {length, true, false};
}

void appendUtf8(std::string_view text, bool isCut, std::string& out) {
    while (!text.empty()) {
        const auto piece = nextPiece(text);
        if (piece.isValid) {
            out.append(text.substr(0, piece.length));
        } else if (!(piece.isTruncated && isCut)) {
            out.append(replacement);
        }
        text.remove_prefix(piece.length);
    }
}

void appendLatin1(std::string_view text, std::string& out) {
    for (const char character : text) {
        const auto byte = static_cast<std::uint8_t>(character);
        if (byte < 0x80) {
            out.push_back(character);
        } else {
            out.push_back(static_cast<char>(0xC0U | byte >> 6U));
            out.push_back(static_cast<char>(0x80U | (byte & 0x3FU)));
        }
    }
}

}  // namespace

std::string textFromProperty(std::string_view bytes, X11TextEncoding encoding, bool isCut) {
    if (const auto end = bytes.find('\0'); end != std::string_view::npos) {
        bytes = bytes.substr(0, end);
        isCut = false;
    }
    std::string text;
    text.reserve(bytes.size());
    switch (encoding) {
        case X11TextEncoding::utf8:
            appendUtf8(bytes, isCut, text);
            break;
        case X11TextEncoding::latin1:
            appendLatin1(bytes, text);
            break;
        case X11TextEncoding::compoundText:
            text = compoundTextToUtf8(bytes, isCut);
            break;
    }
    return text;
}

}  // namespace ferrowyn

#include "core/text_encoding.h"

#include <unicode/ucnv.h>
#include <unicode/unistr.h>
#include <unicode/utf16.h>
#include <unicode/utf8.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>

#include "core/text.h"

namespace ferrowyn::text {

namespace {

constexpr char32_t replacementCharacter = 0xFFFD;

void appendUtf8(std::string& text, char32_t scalar) {
    char bytes[U8_MAX_LENGTH];
    std::int32_t length = 0;
    U8_APPEND_UNSAFE(bytes, length, static_cast<std::uint32_t>(scalar));
    text.append(bytes, static_cast<std::size_t>(length));
}

/// Returns the next scalar, or -1 for an ill-formed sequence, and moves `position` behind it.
UChar32 nextScalar(std::string_view bytes, std::size_t& position) {
    // Reads at most four bytes, so that the offsets fit ICU's 32-bit integers, however long the text is.
    const std::size_t available = std::min<std::size_t>(bytes.size() - position, U8_MAX_LENGTH);
    const auto* const start = reinterpret_cast<const std::uint8_t*>(bytes.data() + position);
    std::int32_t taken = 0;
    UChar32 scalar = 0;
    U8_NEXT(start, taken, static_cast<std::int32_t>(available), scalar);
    position += static_cast<std::size_t>(taken);
    return scalar;
}

}  // namespace

bool isValidUtf8(std::string_view bytes) {
    if (isAscii(bytes)) {
        return true;
    }
    std::size_t position = 0;
    while (position < bytes.size()) {
        if (nextScalar(bytes, position) < 0) {
            return false;
        }
    }
    return true;
}

std::string repairedUtf8(std::string_view bytes) {
    if (isValidUtf8(bytes)) {
        return std::string(bytes);
    }
    std::string repaired;
    repaired.reserve(bytes.size() + U8_MAX_LENGTH);
    std::size_t position = 0;
    while (position < bytes.size()) {
        const std::size_t start = position;
        if (nextScalar(bytes, position) < 0) {
            appendUtf8(repaired, replacementCharacter);
        } else {
            repaired.append(bytes.substr(start, position - start));
        }
    }
    return repaired;
}

std::string utf8FromUtf16(std::u16string_view units) {
    std::string result;
    result.reserve(units.size());
    for (std::size_t i = 0; i < units.size(); ++i) {
        const char16_t unit = units[i];
        if (!U16_IS_SURROGATE(unit)) {
            appendUtf8(result, unit);
        } else if (U16_IS_SURROGATE_LEAD(unit) && i + 1 < units.size() && U16_IS_TRAIL(units[i + 1])) {
            appendUtf8(result, static_cast<char32_t>(U16_GET_SUPPLEMENTARY(unit, units[i + 1])));
            ++i;
        } else {
            appendUtf8(result, replacementCharacter);
        }
    }
    return result;
}

std::u16string utf16FromUtf8(std::string_view bytes) {
    std::u16string result;
    result.reserve(bytes.size());
    std::size_t position = 0;
    while (position < bytes.size()) {
        const UChar32 decoded = nextScalar(bytes, position);
        const UChar32 scalar = decoded < 0 ? static_cast<UChar32>(replacementCharacter) : decoded;
        if (U_IS_BMP(scalar)) {
            result.push_back(static_cast<char16_t>(scalar));
        } else {
            result.push_back(static_cast<char16_t>(U16_LEAD(scalar)));
            result.push_back(static_cast<char16_t>(U16_TRAIL(scalar)));
        }
    }
    return result;
}

std::optional<std::string> utf8FromEncoding(std::string_view bytes, const std::string& encoding) {
    UErrorCode error = U_ZERO_ERROR;
    const std::unique_ptr<UConverter, decltype(&ucnv_close)> converter(ucnv_open(encoding.c_str(), &error),
                                                                       &ucnv_close);
    if (U_FAILURE(error)) {
        return std::nullopt;
    }
    icu::UnicodeString text(bytes.data(), static_cast<std::int32_t>(bytes.size()), converter.get(), error);
    // ICU's converters write U+001A for a single byte that they do not know.
    text.findAndReplace(icu::UnicodeString(char16_t{0x1A}), icu::UnicodeString(char16_t{0xFFFD}));
    std::string utf8;
    text.toUTF8String(utf8);
    return utf8;
}

std::string withoutControls(std::string_view text) {
    const auto isBetween = [&text](std::size_t at, unsigned char first, unsigned char last) {
        return at < text.size() && static_cast<unsigned char>(text[at]) >= first &&
               static_cast<unsigned char>(text[at]) <= last;
    };
    std::string printable;
    printable.reserve(text.size());
    for (std::size_t at = 0; at < text.size(); ++at) {
        // The controls U+0080 to U+009F take two bytes.
        const bool isTwoByteControl = isBetween(at, 0xC2, 0xC2) && isBetween(at + 1, 0x80, 0x9F);
        if (isTwoByteControl || isBetween(at, 0x00, 0x1F) || isBetween(at, 0x7F, 0x7F)) {
            printable += '?';
            at += isTwoByteControl ? 1 : 0;
        } else {
            printable += text[at];
        }
    }
    return printable;
}

}  // namespace ferrowyn::text

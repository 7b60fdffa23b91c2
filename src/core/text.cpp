#include "core/text.h"

#include <unicode/casemap.h>
#include <unicode/coll.h>
#include <unicode/locid.h>
#include <unicode/normalizer2.h>
#include <unicode/stringpiece.h>
#include <unicode/uchar.h>
#include <unicode/utf8.h>

#include <algorithm>
#include <cstdint>
#include <memory>

namespace ferrowyn::text {

namespace {

/// ICU takes lengths as 32-bit integers; no text the program meets comes near that.
std::int32_t lengthOf(std::string_view text) {
    return static_cast<std::int32_t>(text.size());
}

icu::StringPiece pieceOf(std::string_view text) {
    return {text.data(), lengthOf(text)};
}

bool isSpaceOrTab(UChar32 scalar) {
    return scalar == '\t' || u_charType(scalar) == U_SPACE_SEPARATOR;
}

bool isNewline(UChar32 scalar) {
    return (scalar >= 0x0A && scalar <= 0x0D) || scalar == 0x85 || scalar == 0x2028 || scalar == 0x2029;
}

bool isSpaceTabOrNewline(UChar32 scalar) {
    return isSpaceOrTab(scalar) || isNewline(scalar);
}

/// A visible ASCII character is in no trimming set, which settles nearly every title at a glance.
bool isVisibleAscii(char byte) {
    return byte > ' ' && byte < '\x7F';
}

template <typename Predicate>
std::string_view trimming(std::string_view text, Predicate isTrimmed) {
    const auto* const bytes = reinterpret_cast<const std::uint8_t*>(text.data());
    std::int32_t begin = 0;
    std::int32_t end = lengthOf(text);
    while (begin < end && !isVisibleAscii(text[static_cast<std::size_t>(begin)])) {
        std::int32_t next = begin;
        UChar32 scalar = 0;
        U8_NEXT(bytes, next, end, scalar);
        if (scalar < 0 || !isTrimmed(scalar)) {
            break;
        }
        begin = next;
    }
    while (begin < end && !isVisibleAscii(text[static_cast<std::size_t>(end - 1)])) {
        std::int32_t previous = end;
        UChar32 scalar = 0;
        U8_PREV(bytes, begin, previous, scalar);
        if (scalar < 0 || !isTrimmed(scalar)) {
            break;
        }
        end = previous;
    }
    return text.substr(static_cast<std::size_t>(begin), static_cast<std::size_t>(end - begin));
}

/// The scalar of a character that consists of one; -1 for any other.
UChar32 singleScalar(std::string_view character) {
    const auto* const bytes = reinterpret_cast<const std::uint8_t*>(character.data());
    const std::int32_t length = lengthOf(character);
    std::int32_t next = 0;
    UChar32 scalar = -1;
    if (length > 0) {
        U8_NEXT(bytes, next, length, scalar);
    }
    return next == length ? scalar : -1;
}

std::string composed(std::string_view text) {
    UErrorCode status = U_ZERO_ERROR;
    const icu::Normalizer2* const normalizer = icu::Normalizer2::getNFCInstance(status);
    std::string result;
    icu::StringByteSink<std::string> sink(&result);
    if (U_SUCCESS(status)) {
        normalizer->normalizeUTF8(0, pieceOf(text), sink, nullptr, status);
    }
    return U_SUCCESS(status) ? result : std::string(text);
}

/// The language whose letter order the user expects. The "C" locale asks for none, and its own order is that of the
/// bytes, which no person expects.
icu::Locale sortingLocale() {
    const icu::Locale& locale = icu::Locale::getDefault();
    return std::string_view(locale.getVariant()) == "POSIX" ? icu::Locale::getRoot() : locale;
}

/// The collator is safe to share: comparing does not change it.
const icu::Collator* standardCollator() {
    static const std::unique_ptr<const icu::Collator> collator = [] {
        UErrorCode status = U_ZERO_ERROR;
        std::unique_ptr<icu::Collator> created(icu::Collator::createInstance(sortingLocale(), status));
        if (U_SUCCESS(status)) {
            created->setAttribute(UCOL_NUMERIC_COLLATION, UCOL_ON, status);
            // Accents count, case does not.
            created->setAttribute(UCOL_STRENGTH, UCOL_SECONDARY, status);
        }
        if (U_FAILURE(status)) {
            created.reset();
        }
        return created;
    }();
    return collator.get();
}

}  // namespace

bool isAscii(std::string_view text) {
    // Collecting the high bits of all bytes lets the compiler take many at a time.
    unsigned char bits = 0;
    for (const char byte : text) {
        bits = static_cast<unsigned char>(bits | static_cast<unsigned char>(byte));
    }
    return bits < 0x80;
}

std::string lowercased(std::string_view text) {
    std::string result;
    if (isAscii(text)) {
        result.resize(text.size());
        std::transform(text.begin(), text.end(), result.begin(),
                       [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c; });
        return result;
    }
    UErrorCode status = U_ZERO_ERROR;
    icu::StringByteSink<std::string> sink(&result, lengthOf(text));
    icu::CaseMap::utf8ToLower("", 0, pieceOf(text), sink, nullptr, status);
    return U_SUCCESS(status) ? result : std::string(text);
}

std::string uppercased(std::string_view text) {
    std::string result;
    UErrorCode status = U_ZERO_ERROR;
    icu::StringByteSink<std::string> sink(&result, lengthOf(text));
    icu::CaseMap::utf8ToUpper("", 0, pieceOf(text), sink, nullptr, status);
    return U_SUCCESS(status) ? result : std::string(text);
}

bool isUppercase(std::string_view character) {
    if (const UChar32 scalar = singleScalar(character); scalar >= 0) {
        return u_isUUppercase(scalar) || (u_hasBinaryProperty(scalar, UCHAR_CHANGES_WHEN_LOWERCASED) &&
                                          !u_hasBinaryProperty(scalar, UCHAR_CHANGES_WHEN_UPPERCASED));
    }
    const std::string self = composed(character);
    const std::string lower = composed(lowercased(self));
    return lower != self && composed(uppercased(self)) == self;
}

bool isLowercase(std::string_view character) {
    if (const UChar32 scalar = singleScalar(character); scalar >= 0) {
        return u_isULowercase(scalar) || (u_hasBinaryProperty(scalar, UCHAR_CHANGES_WHEN_UPPERCASED) &&
                                          !u_hasBinaryProperty(scalar, UCHAR_CHANGES_WHEN_LOWERCASED));
    }
    const std::string self = composed(character);
    const std::string upper = composed(uppercased(self));
    return upper != self && composed(lowercased(self)) == self;
}

std::string_view trimmingWhitespace(std::string_view text) {
    return trimming(text, isSpaceOrTab);
}

std::string_view trimmingWhitespaceAndNewlines(std::string_view text) {
    return trimming(text, isSpaceTabOrNewline);
}

bool isControlCharacter(char32_t scalar) {
    const auto category = u_charType(static_cast<UChar32>(scalar));
    return category == U_CONTROL_CHAR || category == U_FORMAT_CHAR;
}

bool containsControlCharacter(std::string_view text) {
    const auto* const bytes = reinterpret_cast<const std::uint8_t*>(text.data());
    const std::int32_t length = lengthOf(text);
    std::int32_t position = 0;
    while (position < length) {
        UChar32 scalar = 0;
        U8_NEXT(bytes, position, length, scalar);
        if (scalar >= 0 && isControlCharacter(static_cast<char32_t>(scalar))) {
            return true;
        }
    }
    return false;
}

std::weak_ordering localizedStandardCompare(std::string_view a, std::string_view b) {
    if (const icu::Collator* const collator = standardCollator()) {
        UErrorCode status = U_ZERO_ERROR;
        const UCollationResult result = collator->compareUTF8(pieceOf(a), pieceOf(b), status);
        if (U_SUCCESS(status)) {
            return static_cast<int>(result) <=> 0;
        }
    }
    // Without the language's tables at least the case is ignored.
    return lowercased(a) <=> lowercased(b);
}

}  // namespace ferrowyn::text

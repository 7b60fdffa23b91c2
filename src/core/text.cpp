#include "core/text.h"

#include <unicode/brkiter.h>
#include <unicode/casemap.h>
#include <unicode/coll.h>
#include <unicode/locid.h>
#include <unicode/normalizer2.h>
#include <unicode/stringpiece.h>
#include <unicode/uchar.h>
#include <unicode/utext.h>
#include <unicode/utf8.h>

#include <algorithm>
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

/// Visible ASCII characters are never trimmed. This quick test is enough for nearly every title.
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

/// The locale for sorting names. The "C" locale would sort by bytes, which no user expects, so the root locale replaces
/// it.
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
    // Without a collator the comparison still ignores case.
    return lowercased(a) <=> lowercased(b);
}

namespace {

/// Finds characters by ICU's rules. It is expensive to make and must not be shared between threads.
class CharacterBreaker {
public:
    CharacterBreaker() {
        UErrorCode status = U_ZERO_ERROR;
        iterator_.reset(icu::BreakIterator::createCharacterInstance(icu::Locale::getRoot(), status));
        if (U_FAILURE(status)) {
            iterator_.reset();
        }
    }
    CharacterBreaker(const CharacterBreaker&) = delete;
    CharacterBreaker& operator=(const CharacterBreaker&) = delete;
    ~CharacterBreaker() { utext_close(&view_); }

    /// Appends the ends of the characters of `part`, which starts `offset` bytes into the whole text.
    void appendEnds(std::string_view part, std::uint32_t offset, std::vector<std::uint32_t>& ends) {
        UErrorCode status = U_ZERO_ERROR;
        utext_openUTF8(&view_, part.data(), static_cast<std::int64_t>(part.size()), &status);
        if (iterator_ && U_SUCCESS(status)) {
            iterator_->setText(&view_, status);
        }
        if (!iterator_ || U_FAILURE(status)) {
            ends.push_back(offset + static_cast<std::uint32_t>(part.size()));
            return;
        }
        for (auto end = iterator_->next(); end != icu::BreakIterator::DONE; end = iterator_->next()) {
            ends.push_back(offset + static_cast<std::uint32_t>(end));
        }
    }

private:
    std::unique_ptr<icu::BreakIterator> iterator_;
    UText view_ = UTEXT_INITIALIZER;
};

/// Whether the scalar joins none of its neighbours: a character always ends between two such scalars. This is true for
/// nearly all letters, ideographs, punctuation and single emoji, so ICU's rules run only where scalars combine.
bool standsAlone(UChar32 scalar) {
    if (scalar < 0x80) {
        return scalar >= 0x20 && scalar != 0x7F;
    }
    // Hangul syllables join with following jamo, which do not stand alone themselves.
    if ((scalar >= 0xC0 && scalar < 0x300) || (scalar >= 0x4E00 && scalar < 0xA000) ||
        (scalar >= 0xAC00 && scalar < 0xD7A4)) {
        return true;
    }
    // The rules may also join Indic consonants, which have no break property of their own.
    return u_getIntPropertyValue(scalar, UCHAR_GRAPHEME_CLUSTER_BREAK) == U_GCB_OTHER &&
           u_getIntPropertyValue(scalar, UCHAR_INDIC_SYLLABIC_CATEGORY) != U_INSC_CONSONANT;
}

bool isPlainAscii(unsigned char byte) {
    return byte < 0x80 && byte != '\r';
}

}  // namespace

void findCharacterEnds(std::string_view text, std::vector<std::uint32_t>& ends) {
    ends.clear();
    const auto* const bytes = reinterpret_cast<const std::uint8_t*>(text.data());
    const auto length = static_cast<std::int32_t>(text.size());
    // The ends between `start` and `position` are not appended yet. `start` is the end of a character.
    std::int32_t start = 0;
    std::int32_t position = 0;
    bool needsRules = false;
    bool previousStandsAlone = true;
    const auto appendPending = [&] {
        if (start == position) {
            return;
        }
        if (needsRules) {
            thread_local CharacterBreaker breaker;
            breaker.appendEnds(text.substr(static_cast<std::size_t>(start), static_cast<std::size_t>(position - start)),
                               static_cast<std::uint32_t>(start), ends);
        } else {
            ends.push_back(static_cast<std::uint32_t>(position));
        }
        start = position;
        needsRules = false;
    };
    while (position < length) {
        std::int32_t next = position;
        UChar32 scalar = 0;
        U8_NEXT(bytes, next, length, scalar);
        // Invalid UTF-8 is left to ICU's rules, which read each byte as U+FFFD.
        const bool alone = scalar >= 0 && standsAlone(scalar);
        if (alone && previousStandsAlone) {
            appendPending();
        } else {
            needsRules = true;
        }
        previousStandsAlone = alone;
        position = next;
    }
    appendPending();
}

std::vector<std::string_view> characters(std::string_view text) {
    std::vector<std::uint32_t> ends;
    findCharacterEnds(text, ends);
    std::vector<std::string_view> result;
    result.reserve(ends.size());
    std::size_t start = 0;
    for (const std::size_t end : ends) {
        result.push_back(text.substr(start, end - start));
        start = end;
    }
    return result;
}

std::size_t characterCount(std::string_view text) {
    if (std::all_of(text.begin(), text.end(), [](char c) { return isPlainAscii(static_cast<unsigned char>(c)); })) {
        return text.size();
    }
    std::vector<std::uint32_t> ends;
    findCharacterEnds(text, ends);
    return ends.size();
}

void removeLastCharacter(std::string& text) {
    const std::size_t size = text.size();
    if (size <= 1) {
        text.clear();
        return;
    }
    // An ASCII character after another one is a whole character, unless it continues a line end.
    const auto last = static_cast<unsigned char>(text[size - 1]);
    if (last < 0x80 && isPlainAscii(static_cast<unsigned char>(text[size - 2]))) {
        text.pop_back();
        return;
    }
    std::vector<std::uint32_t> ends;
    findCharacterEnds(text, ends);
    text.resize(ends.size() < 2 ? 0 : ends[ends.size() - 2]);
}

}  // namespace ferrowyn::text

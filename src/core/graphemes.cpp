#include "core/graphemes.h"

#include <unicode/brkiter.h>
#include <unicode/locid.h>
#include <unicode/uchar.h>
#include <unicode/utext.h>
#include <unicode/utf8.h>

#include <algorithm>
#include <memory>

namespace ferrowyn::text {

namespace {

/// ICU's rules for the parts of a text that need them. Break iterators are expensive to make and must not be shared
/// between threads.
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

/// Whether a character always ends between two scalars of which this is true, whatever stands around them: neither
/// joins its neighbours. Nearly all letters, ideographs, punctuation and lone emoji are like that, so that the rules
/// run only over the few places where scalars combine.
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
    // From `start` on, up to `position`, nothing is appended yet. `start` is the end of a character.
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
        // Bytes that are no UTF-8 are left to the rules, which read each as U+FFFD.
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
    // After an ASCII character, an ASCII character that does not continue a line end is one of its own.
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

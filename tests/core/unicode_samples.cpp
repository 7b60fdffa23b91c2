#include "tests/core/unicode_samples.h"

#include <unicode/brkiter.h>
#include <unicode/normalizer2.h>
#include <unicode/unistr.h>

#include <array>
#include <cstddef>
#include <memory>
#include <string_view>
#include <vector>

namespace ferrowyn::unicode_samples {

namespace {

using Alphabet = std::vector<std::string_view>;

const std::array<Alphabet, 7>& alphabets() {
    static const std::array<Alphabet, 7> all{
        // Latin, composed and decomposed, with the letters whose case mappings are special.
        Alphabet{"a",      "A", "b",       "B",  "s",      "S",      "ß",      "ẞ",       "İ",       "I",
                 "ı",      "i", "i\u0307", "é",  "É",      "e",      "E",      "e\u0301", "E\u0301", "\u0301",
                 "\u0323", "ü", "u\u0308", "Dž", "\uFB01", "\u212A", "\u212B", "Å",       " ",       "-"},
        // Greek, where a sigma depends on what follows.
        Alphabet{"Σ", "σ", "ς", "Ο", "ο", "Δ", "δ", "ά", "α\u0301", "Α", "Ά", " ", ".", "\u0345", "ᾳ"},
        // Hangul as syllables and as jamo.
        Alphabet{"한", "글", "\u1112", "\u1161", "\u11AB", "가", "\u1100", "각", "\u11A8", "a", " "},
        // Emoji sequences and flags.
        Alphabet{"👩", "\u200D", "💻", "👩‍💻", "👍", "🏽", "🇩🇪", "🇫", "🇷", "❤", "\uFE0F", "a", "B", " ", "1",
                 "\u20E3"},
        // Thai, Devanagari and right-to-left scripts.
        Alphabet{"ท", "ี", "่", "น", "ำ", "क", "्", "ष", "ि", "א", "ב", "\u05B8", "ש", "س", "ل", "\u064E", "\u200F",
                 "\u0600", " "},
        // Separators and what may hide them.
        Alphabet{" ", "-", "_", ".", "/", ":", "—", "–", "a", "B", "c", "D", "\u0301", "\u2010", "‑", "\u00A0"},
        // Ideographs, kana, Cyrillic, line ends, scalars beyond the first plane.
        Alphabet{"漢", "字", "か", "\u3099", "が", "Ж", "ж", "й", "и\u0306", "\r", "\n", "\r\n", "𝒜", "𐐀", "𐐨", "a",
                 " "}};
    return all;
}

std::size_t below(std::mt19937& random, std::size_t limit) {
    return std::uniform_int_distribution<std::size_t>(0, limit - 1)(random);
}

std::vector<icu::UnicodeString> charactersOf(const std::string& text) {
    UErrorCode status = U_ZERO_ERROR;
    static const std::unique_ptr<icu::BreakIterator> breaks(
        icu::BreakIterator::createCharacterInstance(icu::Locale::getRoot(), status));
    const auto units = icu::UnicodeString::fromUTF8(text);
    breaks->setText(units);
    std::vector<icu::UnicodeString> result;
    for (auto start = breaks->first(), end = breaks->next(); end != icu::BreakIterator::DONE;
         start = end, end = breaks->next()) {
        result.emplace_back(units, start, end - start);
    }
    return result;
}

icu::UnicodeString varied(std::mt19937& random, icu::UnicodeString character) {
    UErrorCode status = U_ZERO_ERROR;
    switch (below(random, 6)) {
        case 0:
            return character.toUpper(icu::Locale::getRoot());
        case 1:
            return character.toLower(icu::Locale::getRoot());
        case 2:
            return icu::Normalizer2::getNFDInstance(status)->normalize(character, status);
        case 3:
            return icu::Normalizer2::getNFCInstance(status)->normalize(character, status);
        default:
            return character;
    }
}

}  // namespace

std::string randomText(std::mt19937& random, int maximumPieces) {
    const Alphabet& main = alphabets()[below(random, alphabets().size())];
    const std::size_t pieces = below(random, static_cast<std::size_t>(maximumPieces) + 1);
    std::string text;
    for (std::size_t i = 0; i < pieces; ++i) {
        const Alphabet& alphabet = below(random, 5) == 0 ? alphabets()[below(random, alphabets().size())] : main;
        text += alphabet[below(random, alphabet.size())];
    }
    return text;
}

std::string randomAsciiText(std::mt19937& random, int maximumLength) {
    // Few letters, so that matches are frequent; all separators; now and then a line end.
    static constexpr std::string_view letters = "aabbcAABBC --_./:1\r\n";
    const std::size_t length = below(random, static_cast<std::size_t>(maximumLength) + 1);
    std::string text;
    for (std::size_t i = 0; i < length; ++i) {
        text += letters[below(random, letters.size() - (below(random, 20) == 0 ? 0 : 2))];
    }
    return text;
}

std::string randomQueryFor(std::mt19937& random, const std::string& text) {
    std::string query;
    const auto characters = charactersOf(text);
    const std::size_t stride = 1 + below(random, 3);
    for (std::size_t i = below(random, 3); i < characters.size(); i += below(random, 4) == 0 ? stride : 1) {
        varied(random, characters[i]).toUTF8String(query);
        if (below(random, 6) == 0) {
            break;
        }
    }
    if (below(random, 8) == 0) {
        query += randomText(random, 2);
    }
    return query;
}

}  // namespace ferrowyn::unicode_samples

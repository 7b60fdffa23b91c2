#pragma once

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <functional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace ferrowyn {

/// The character after one of these starts a word.
inline constexpr std::array<char32_t, 8> wordSeparators{U' ', U'-', U'_', U'.', U'/', U':', U'\u2014', U'\u2013'};

[[nodiscard]] constexpr bool isWordSeparator(char32_t scalar) {
    return std::find(wordSeparators.begin(), wordSeparators.end(), scalar) != wordSeparators.end();
}

/// Functions for text in which every byte is one character: ASCII without carriage returns (a carriage return and a
/// line feed are one character). They read eight bytes at a time, because every key press searches all titles.
namespace plain_ascii {

inline constexpr std::uint64_t lowBits = 0x0101010101010101;
inline constexpr std::uint64_t highBits = 0x8080808080808080;

/// The highest bit of each byte that is 0; bytes above the lowest such byte may be wrong.
[[nodiscard]] constexpr std::uint64_t zeroBytes(std::uint64_t bytes) {
    return (bytes - lowBits) & ~bytes & highBits;
}

[[nodiscard]] inline std::uint64_t load(const char* bytes) {
    std::uint64_t word = 0;
    std::memcpy(&word, bytes, sizeof word);
    return word;
}

[[nodiscard]] constexpr bool isUpper(char c) {
    return c >= 'A' && c <= 'Z';
}
[[nodiscard]] constexpr bool isLower(char c) {
    return c >= 'a' && c <= 'z';
}
[[nodiscard]] constexpr char lower(char c) {
    return isUpper(c) ? static_cast<char>(c + ('a' - 'A')) : c;
}

[[nodiscard]] inline bool isPlain(std::string_view text) {
    std::size_t i = 0;
    std::uint64_t strange = 0;
    for (; i + 8 <= text.size(); i += 8) {
        const std::uint64_t word = load(text.data() + i);
        strange |= (word & highBits) | zeroBytes(word ^ (lowBits * '\r'));
    }
    for (; i < text.size(); ++i) {
        strange |= static_cast<std::uint64_t>((text[i] & 0x80) != 0 || text[i] == '\r');
    }
    return strange == 0;
}

/// The first position of `wanted` in a plain text at or after `from`, ignoring case; npos when there is none. `wanted`
/// is a lower-case letter or a character without case.
[[nodiscard]] inline std::size_t findIgnoringCase(std::string_view text, std::size_t from, char wanted) {
    // For a letter, the bit that distinguishes the cases is set on both sides. Other characters are compared unchanged.
    const auto caseBit = static_cast<unsigned char>(isLower(wanted) ? 0x20 : 0);
    std::size_t i = from;
    if constexpr (std::endian::native == std::endian::little) {
        const std::uint64_t caseBits = lowBits * caseBit;
        const std::uint64_t wantedBytes = lowBits * static_cast<unsigned char>(wanted);
        for (; i + 8 <= text.size(); i += 8) {
            const std::uint64_t found = zeroBytes((load(text.data() + i) | caseBits) ^ wantedBytes);
            if (found != 0) {
                return i + static_cast<std::size_t>(std::countr_zero(found)) / 8;
            }
        }
    }
    for (; i < text.size(); ++i) {
        if ((static_cast<unsigned char>(text[i]) | caseBit) == static_cast<unsigned char>(wanted)) {
            return i;
        }
    }
    return std::string_view::npos;
}

}  // namespace plain_ascii

/// The user-perceived characters of a text in a form that compares fast, and in which canonically equivalent characters
/// are equal: é stored as one scalar equals é stored as two.
class CharacterCodes {
public:
    static constexpr std::size_t notFound = static_cast<std::size_t>(-1);

    CharacterCodes() = default;
    explicit CharacterCodes(std::string_view text);

    [[nodiscard]] std::size_t size() const { return codes_.size(); }

    /// The scalar that the character composes to; a value beyond Unicode when it needs several scalars.
    [[nodiscard]] char32_t scalar(std::size_t position) const { return codes_[position]; }
    /// Whether every character is one ASCII character.
    [[nodiscard]] bool isAscii() const;

    [[nodiscard]] bool areEqual(std::size_t position, const CharacterCodes& other, std::size_t otherPosition) const {
        const std::uint32_t code = codes_[position];
        const std::uint32_t otherCode = other.codes_[otherPosition];
        if ((code & otherCode & sequenceFlag) == 0) {
            return code == otherCode;
        }
        return sequences_[code & ~sequenceFlag] == other.sequences_[otherCode & ~sequenceFlag];
    }

    /// The first position at or after `from` of the other text's character; `notFound` when there is none.
    [[nodiscard]] std::size_t find(const CharacterCodes& other, std::size_t otherPosition, std::size_t from) const;

private:
    static constexpr std::uint32_t sequenceFlag = 0x80000000;

    void append(std::string_view character);

    /// The scalar that a character composes to. When it needs several scalars: the flag and an index into `sequences_`.
    std::vector<std::uint32_t> codes_;
    /// Composed forms, UTF-8.
    std::vector<std::string> sequences_;
};

/// The part of matching that does not depend on the query, computed once for each text. Segmentation, case mapping and
/// composition take about a hundred times as long as the search.
class PreparedText {
public:
    PreparedText() = default;
    explicit PreparedText(std::string_view text);

    /// The characters of the lowercased text.
    [[nodiscard]] const CharacterCodes& lowercased() const { return lowercased_; }
    /// The number of characters before lower casing, which can change the number.
    [[nodiscard]] std::size_t characterCount() const { return characterCount_; }

    // Positions count characters of the lowercased text.

    /// Whether the position is 0 or follows a word separator.
    [[nodiscard]] bool startsWord(std::size_t position) const { return has(position, Trait::startsWord); }
    /// Whether an upper-case character follows a lower-case one here, as in camelCase.
    [[nodiscard]] bool isHump(std::size_t position) const { return has(position, Trait::hump); }
    /// Whether lower casing does not change the character here.
    [[nodiscard]] bool isLowercaseForm(std::size_t position) const { return has(position, Trait::lowercaseForm); }

private:
    enum class Trait : std::uint8_t { startsWord = 1, hump = 2, lowercaseForm = 4 };

    [[nodiscard]] bool has(std::size_t position, Trait trait) const {
        return (traits_[position] & static_cast<std::uint8_t>(trait)) != 0;
    }
    void add(std::size_t position, Trait trait, bool isSo) {
        if (isSo) {
            traits_[position] = static_cast<std::uint8_t>(traits_[position] | static_cast<std::uint8_t>(trait));
        }
    }

    CharacterCodes lowercased_;
    std::size_t characterCount_ = 0;
    std::vector<std::uint8_t> traits_;
};

/// Keeps prepared texts between key presses. Its size is limited: texts that were not used recently are dropped. Each
/// thread uses its own cache (`ofThisThread`).
class PreparedTextCache {
public:
    /// Enough for the three texts of some hundred windows. The cache keeps up to two generations.
    static constexpr std::size_t generationSize = 2048;
    /// In bytes. Longer texts are prepared again each time: they are rare, and they take much memory.
    static constexpr std::size_t longestKeptText = 1024;

    [[nodiscard]] static PreparedTextCache& ofThisThread();

    /// Valid until the next call.
    [[nodiscard]] const PreparedText& prepared(std::string_view text);

    /// Prepares a text for a later call of `prepared`. False when it is in the cache already or too long to be kept.
    bool prepareAhead(std::string_view text);

    [[nodiscard]] std::size_t size() const { return recent_.size() + older_.size(); }

private:
    struct Hash {
        using is_transparent = void;
        std::size_t operator()(std::string_view text) const { return std::hash<std::string_view>{}(text); }
    };
    using Generation = std::unordered_map<std::string, PreparedText, Hash, std::equal_to<>>;

    Generation recent_;
    Generation older_;
    PreparedText longText_;
};

}  // namespace ferrowyn

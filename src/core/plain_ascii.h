#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

/// Byte-wise work on text in which every byte is one character: ASCII without carriage returns, which may join a
/// following line feed. Eight bytes at a time, because titles are searched at every keystroke.
namespace ferrowyn::plain_ascii {

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

/// Where `wanted`, a lower-case letter or a character without case, first stands in a plain text at or after `from`, in
/// either case; npos when it does not.
[[nodiscard]] inline std::size_t findIgnoringCase(std::string_view text, std::size_t from, char wanted) {
    // The bit that tells the cases of a letter apart is set on both sides; other characters are compared as they are.
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

}  // namespace ferrowyn::plain_ascii

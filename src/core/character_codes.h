#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace ferrowyn {

/// The user-perceived characters of a text in a form that compares fast, and in which canonically equivalent characters
/// are equal: é is one character, and the same one, whether it is stored in one scalar or in two.
class CharacterCodes {
public:
    static constexpr std::size_t notFound = static_cast<std::size_t>(-1);

    CharacterCodes() = default;
    explicit CharacterCodes(std::string_view text);

    [[nodiscard]] std::size_t size() const { return codes_.size(); }

    /// The one scalar to which the character composes; a value beyond Unicode when it takes more.
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

    /// Where the other text's character first stands in this one at or after `from`.
    [[nodiscard]] std::size_t find(const CharacterCodes& other, std::size_t otherPosition, std::size_t from) const;

private:
    static constexpr std::uint32_t sequenceFlag = 0x80000000;

    void append(std::string_view character);

    /// The scalar to which a character composes; the flag and an index into `sequences_` when it does not to one.
    std::vector<std::uint32_t> codes_;
    /// Composed forms, UTF-8.
    std::vector<std::string> sequences_;
};

}  // namespace ferrowyn

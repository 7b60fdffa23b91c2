#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "core/character_codes.h"

namespace ferrowyn {

/// What matching a query asks of a text and does not depend on the query, worked out once: segmentation, case mapping
/// and composition cost a hundred times what the search itself does.
class PreparedText {
public:
    PreparedText() = default;
    explicit PreparedText(std::string_view text);

    /// The characters of the lowercased text.
    [[nodiscard]] const CharacterCodes& lowercased() const { return lowercased_; }
    /// The number of characters of the text as it is, which case mapping might change.
    [[nodiscard]] std::size_t characterCount() const { return characterCount_; }

    // Positions count characters of the lowercased text.

    /// Whether the position is 0 or follows a word separator.
    [[nodiscard]] bool startsWord(std::size_t position) const { return has(position, Trait::startsWord); }
    /// Whether an upper-case character follows a lower-case one here, as in camelCase.
    [[nodiscard]] bool isHump(std::size_t position) const { return has(position, Trait::hump); }
    /// Whether lower casing leaves the character here as it is.
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

}  // namespace ferrowyn

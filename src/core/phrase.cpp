#include "core/phrase.h"

#include <cstddef>

namespace ferrowyn {

std::string Phrase::untranslated() const {
    return withArguments(text, arguments);
}

std::string withArguments(std::string_view text, const std::vector<std::string>& arguments) {
    std::string result;
    // From left to right: an argument may itself look like a placeholder.
    for (std::size_t position = 0; position < text.size(); ++position) {
        const bool isPlaceholder = text[position] == '%' && position + 1 < text.size() && text[position + 1] >= '1' &&
                                   text[position + 1] <= '9';
        const auto number = isPlaceholder ? static_cast<std::size_t>(text[position + 1] - '1') : arguments.size();
        if (number < arguments.size()) {
            result += arguments[number];
            ++position;
        } else {
            result += text[position];
        }
    }
    return result;
}

}  // namespace ferrowyn

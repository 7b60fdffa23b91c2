#include "core/prepared_text.h"

#include <vector>

#include "core/graphemes.h"
#include "core/text.h"
#include "core/word_separators.h"

namespace ferrowyn {

PreparedText::PreparedText(std::string_view text) : lowercased_(text::lowercased(text)) {
    const CharacterCodes characters(text);
    const std::vector<std::string_view> views = text::characters(text);
    characterCount_ = characters.size();
    traits_.resize(lowercased_.size());
    bool previousIsLowercase = false;
    for (std::size_t position = 0; position < traits_.size(); ++position) {
        add(position, Trait::startsWord,
            position == 0 || (position <= characterCount_ && isWordSeparator(characters.scalar(position - 1))));
        if (position < characterCount_) {
            add(position, Trait::hump, previousIsLowercase && text::isUppercase(views[position]));
            add(position, Trait::lowercaseForm, characters.areEqual(position, lowercased_, position));
            previousIsLowercase = text::isLowercase(views[position]);
        }
    }
}

}  // namespace ferrowyn

#include "core/prepared_text.h"

#include <unicode/normalizer2.h>
#include <unicode/stringpiece.h>
#include <unicode/uchar.h>
#include <unicode/utf8.h>

#include <utility>

#include "core/text.h"

namespace ferrowyn {

namespace {

struct FirstScalar {
    UChar32 scalar;
    /// Whether the text has no other scalar.
    bool isAll;
};

FirstScalar firstScalar(std::string_view character) {
    const auto* const bytes = reinterpret_cast<const std::uint8_t*>(character.data());
    std::int32_t next = 0;
    UChar32 scalar = -1;
    if (!character.empty()) {
        U8_NEXT(bytes, next, static_cast<std::int32_t>(character.size()), scalar);
    }
    return {scalar, static_cast<std::size_t>(next) == character.size()};
}

/// Whether composition leaves the scalar unchanged when it stands alone, as it does for every scalar below the
/// combining marks.
bool composesToItself(UChar32 scalar) {
    return scalar < 0x300 || u_getIntPropertyValue(scalar, UCHAR_NFC_QUICK_CHECK) != UNORM_NO;
}

std::string composed(std::string_view character) {
    UErrorCode status = U_ZERO_ERROR;
    const icu::Normalizer2* const normalizer = icu::Normalizer2::getNFCInstance(status);
    std::string result;
    if (U_SUCCESS(status)) {
        icu::StringByteSink<std::string> sink(&result);
        normalizer->normalizeUTF8(0, {character.data(), static_cast<std::int32_t>(character.size())}, sink, nullptr,
                                  status);
    }
    return U_SUCCESS(status) ? result : std::string(character);
}

}  // namespace

CharacterCodes::CharacterCodes(std::string_view text) {
    thread_local std::vector<std::uint32_t> ends;
    text::findCharacterEnds(text, ends);
    codes_.reserve(ends.size());
    std::size_t start = 0;
    for (const std::size_t end : ends) {
        append(text.substr(start, end - start));
        start = end;
    }
}

void CharacterCodes::append(std::string_view character) {
    FirstScalar first = firstScalar(character);
    if (first.isAll && first.scalar >= 0 && composesToItself(first.scalar)) {
        codes_.push_back(static_cast<std::uint32_t>(first.scalar));
        return;
    }
    std::string form = composed(character);
    first = firstScalar(form);
    if (first.isAll && first.scalar >= 0) {
        codes_.push_back(static_cast<std::uint32_t>(first.scalar));
        return;
    }
    codes_.push_back(sequenceFlag | static_cast<std::uint32_t>(sequences_.size()));
    sequences_.push_back(std::move(form));
}

bool CharacterCodes::isAscii() const {
    return std::all_of(codes_.begin(), codes_.end(), [](std::uint32_t code) { return code < 0x80; });
}

std::size_t CharacterCodes::find(const CharacterCodes& other, std::size_t otherPosition, std::size_t from) const {
    const std::uint32_t wanted = other.codes_[otherPosition];
    for (std::size_t position = from; position < codes_.size(); ++position) {
        if ((wanted & sequenceFlag) == 0 ? codes_[position] == wanted : areEqual(position, other, otherPosition)) {
            return position;
        }
    }
    return notFound;
}

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

PreparedTextCache& PreparedTextCache::ofThisThread() {
    thread_local PreparedTextCache cache;
    return cache;
}

const PreparedText& PreparedTextCache::prepared(std::string_view text) {
    if (const auto found = recent_.find(text); found != recent_.end()) {
        return found->second;
    }
    if (text.size() > longestKeptText) {
        longText_ = PreparedText(text);
        return longText_;
    }
    if (recent_.size() >= generationSize) {
        older_ = std::exchange(recent_, {});
    }
    // A text that is still used moves to the recent generation. The others are dropped when the recent generation is
    // full.
    if (const auto found = older_.find(text); found != older_.end()) {
        return recent_.insert(older_.extract(found)).position->second;
    }
    return recent_.try_emplace(std::string(text), text).first->second;
}

bool PreparedTextCache::prepareAhead(std::string_view text) {
    if (text.size() > longestKeptText || recent_.find(text) != recent_.end()) {
        return false;
    }
    const bool isNew = older_.find(text) == older_.end();
    static_cast<void>(prepared(text));
    return isNew;
}

}  // namespace ferrowyn

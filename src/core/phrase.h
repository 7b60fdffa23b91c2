#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace ferrowyn {

/// Marks a text for translation where it stands; the translation itself happens where it is shown. The tools find it by
/// the name: lupdate -tr-function-alias QT_TRANSLATE_NOOP+=translatable.
[[nodiscard]] constexpr std::string_view translatable([[maybe_unused]] const char* context, std::string_view text) {
    return text;
}

/// A fixed text and what is put into it: "%1" stands for the first argument, "%2" for the second. Kept apart, so that
/// the fixed part can be translated. A plain value.
struct Phrase {
    std::string_view text;
    std::vector<std::string> arguments;

    /// A text that comes from elsewhere, as it stands.
    [[nodiscard]] static Phrase verbatim(std::string words) { return {"%1", {std::move(words)}}; }

    /// In the language in which it was written.
    [[nodiscard]] std::string untranslated() const;

    friend bool operator==(const Phrase&, const Phrase&) = default;
};

/// `text` with its placeholders replaced, each once; one without an argument stays.
[[nodiscard]] std::string withArguments(std::string_view text, const std::vector<std::string>& arguments);

}  // namespace ferrowyn

#include "platform/x11/x11_text.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <utility>

#include "core/text_encoding.h"

namespace ferrowyn {

namespace {

constexpr std::string_view replacement = "\xEF\xBF\xBD";

struct Utf8Piece {
    std::size_t length = 1;
    bool isValid = false;
    /// The bytes end within a character that is well-formed so far.
    bool isTruncated = false;
};

/// The next character, or the maximal ill-formed piece, of a non-empty text.
Utf8Piece nextPiece(std::string_view text) {
    const auto byte = [&](std::size_t index) { return static_cast<std::uint8_t>(text[index]); };
    const std::uint8_t lead = byte(0);
    if (lead < 0x80) {
        return {1, true, false};
    }
    // The range of the second byte excludes overlong forms, surrogates and code points above U+10FFFF.
    std::size_t length = 0;
    std::uint8_t low = 0x80;
    std::uint8_t high = 0xBF;
    if (lead >= 0xC2 && lead <= 0xDF) {
        length = 2;
    } else if (lead >= 0xE0 && lead <= 0xEF) {
        length = 3;
        low = lead == 0xE0 ? 0xA0 : 0x80;
        high = lead == 0xED ? 0x9F : 0xBF;
    } else if (lead >= 0xF0 && lead <= 0xF4) {
        length = 4;
        low = lead == 0xF0 ? 0x90 : 0x80;
        high = lead == 0xF4 ? 0x8F : 0xBF;
    } else {
        return {1, false, false};
    }
    for (std::size_t index = 1; index < length; ++index) {
        if (index >= text.size()) {
            return {index, false, true};
        }
        const std::uint8_t next = byte(index);
        if (next < low || next > high) {
            return {index, false, false};
        }
        low = 0x80;
        high = 0xBF;
    }
    return {length, true, false};
}

void appendUtf8(std::string_view text, bool isCut, std::string& out) {
    while (!text.empty()) {
        const auto piece = nextPiece(text);
        if (piece.isValid) {
            out.append(text.substr(0, piece.length));
        } else if (!(piece.isTruncated && isCut)) {
            out.append(replacement);
        }
        text.remove_prefix(piece.length);
    }
}

void appendLatin1(std::string_view text, std::string& out) {
    for (const char character : text) {
        const auto byte = static_cast<std::uint8_t>(character);
        if (byte < 0x80) {
            out.push_back(character);
        } else {
            out.push_back(static_cast<char>(0xC0U | byte >> 6U));
            out.push_back(static_cast<char>(0x80U | (byte & 0x3FU)));
        }
    }
}

}  // namespace

std::string textFromProperty(std::string_view bytes, X11TextEncoding encoding, bool isCut) {
    if (const auto end = bytes.find('\0'); end != std::string_view::npos) {
        bytes = bytes.substr(0, end);
        isCut = false;
    }
    std::string text;
    text.reserve(bytes.size());
    switch (encoding) {
        case X11TextEncoding::utf8:
            appendUtf8(bytes, isCut, text);
            break;
        case X11TextEncoding::latin1:
            appendLatin1(bytes, text);
            break;
        case X11TextEncoding::compoundText:
            text = compoundTextToUtf8(bytes, isCut);
            break;
    }
    return text;
}

namespace {

constexpr char escape = '\x1B';
constexpr char startOfText = '\x02';
constexpr std::uint8_t highBit = 0x80;

/// A character set that uses one half of the byte values. With the high bit set and the prefix before each character,
/// its text is text in the converter's encoding.
struct CharacterSet {
    /// "94" or "96" for the set's size, "$" when it is multi-byte, and the last character of its escape sequence.
    std::string_view name;
    const char* converter;
    std::size_t bytesPerCharacter = 1;
    std::string_view prefix;
};

constexpr std::array characterSets{
    CharacterSet{"94$A", "GB2312", 2},        CharacterSet{"94$B", "EUC-JP", 2},
    CharacterSet{"94$C", "EUC-KR", 2},        CharacterSet{"94$D", "EUC-JP", 2, "\x8F"},
    CharacterSet{"94$G", "EUC-TW", 2},        CharacterSet{"94$H", "EUC-TW", 2, "\x8E\xA2"},
    CharacterSet{"94I", "EUC-JP", 1, "\x8E"}, CharacterSet{"96A", "ISO-8859-1"},
    CharacterSet{"96B", "ISO-8859-2"},        CharacterSet{"96C", "ISO-8859-3"},
    CharacterSet{"96D", "ISO-8859-4"},        CharacterSet{"96F", "ISO-8859-7"},
    CharacterSet{"96G", "ISO-8859-6"},        CharacterSet{"96H", "ISO-8859-8"},
    CharacterSet{"96L", "ISO-8859-5"},        CharacterSet{"96M", "ISO-8859-9"},
    CharacterSet{"96T", "TIS-620"},           CharacterSet{"96V", "ISO-8859-10"},
    CharacterSet{"96Y", "ISO-8859-13"},       CharacterSet{"96_", "ISO-8859-14"},
    CharacterSet{"96b", "ISO-8859-15"},
};

constexpr CharacterSet ascii{"94B", nullptr};
constexpr CharacterSet latin1{"96A", "ISO-8859-1"};
constexpr CharacterSet unknown{"", nullptr};

std::string convert(std::string_view bytes, const std::string& encoding) {
    return text::utf8FromEncoding(bytes, encoding).value_or(std::string(replacement));
}

class Reader {
public:
    Reader(std::string_view text, bool isCut) : text_(text), isCut_(isCut) {}

    [[nodiscard]] std::string read() {
        while (!text_.empty()) {
            if (text_.front() == escape) {
                readEscape();
            } else {
                readRun();
            }
        }
        return std::move(out_);
    }

private:
    /// Spaces and control characters (`common`) are the same in all sets; the others come from the left or right set.
    enum class Part { common, left, right };

    [[nodiscard]] static Part partOf(char character) {
        const auto byte = static_cast<std::uint8_t>(character);
        if ((byte & highBit) != 0) {
            return Part::right;
        }
        return byte <= 0x20 || byte == 0x7F ? Part::common : Part::left;
    }

    void readRun() {
        const auto run = text_.substr(0, text_.find(escape));
        text_.remove_prefix(run.size());
        const bool endsInTheCut = isCut_ && text_.empty();
        if (isUtf8_) {
            out_ += textFromProperty(run, X11TextEncoding::utf8, endsInTheCut);
            return;
        }
        for (const auto* half = run.begin(); half != run.end();) {
            const Part part = partOf(*half);
            const auto* const end =
                std::find_if(half, run.end(), [part](char character) { return partOf(character) != part; });
            const std::string_view bytes(half, static_cast<std::size_t>(end - half));
            if (part == Part::common) {
                out_ += bytes;
            } else {
                appendHalf(bytes, part == Part::right ? right_ : left_, endsInTheCut && end == run.end());
            }
            half = end;
        }
    }

    void appendHalf(std::string_view bytes, const CharacterSet& set, bool endsInTheCut) {
        if (set.name == ascii.name) {
            for (const char byte : bytes) {
                out_ += static_cast<char>(static_cast<std::uint8_t>(byte) & ~highBit);
            }
            return;
        }
        if (set.converter == nullptr) {
            out_ += replacement;
            return;
        }
        std::string encoded;
        std::size_t index = 0;
        for (; index + set.bytesPerCharacter <= bytes.size(); index += set.bytesPerCharacter) {
            encoded += set.prefix;
            for (const char byte : bytes.substr(index, set.bytesPerCharacter)) {
                encoded += static_cast<char>(static_cast<std::uint8_t>(byte) | highBit);
            }
        }
        out_ += convert(encoded, set.converter);
        if (index < bytes.size() && !endsInTheCut) {
            out_ += replacement;
        }
    }

    void readEscape() {
        std::size_t length = 1;
        while (length < text_.size() && text_[length] >= 0x20 && text_[length] <= 0x2F) {
            ++length;
        }
        if (length >= text_.size()) {
            text_ = {};
            return;
        }
        const auto sequence = text_.substr(1, length);
        text_.remove_prefix(length + 1);
        if (sequence.starts_with("%/")) {
            readExtendedSegment();
        } else if (sequence == "%G" || sequence == "%@") {
            isUtf8_ = sequence == "%G";
        } else {
            designate(sequence);
        }
    }

    void designate(std::string_view sequence) {
        const bool isMultiByte = sequence.starts_with('$');
        const auto half = sequence.substr(isMultiByte ? 1 : 0);
        // The oldest form of a multi-byte escape sequence has no character for the half and means the left one.
        const bool isShort = isMultiByte && half.size() == 1;
        const char which = isShort ? '(' : half.front();
        std::string name(which == '-' || which == '.' || which == '/' ? "96" : "94");
        name += isMultiByte ? "$" : "";
        name += half.back();
        auto& target = which == '(' ? left_ : right_;
        const auto* const found = std::find_if(characterSets.begin(), characterSets.end(),
                                               [&name](const CharacterSet& set) { return set.name == name; });
        // JIS Roman differs from ASCII in two characters. Clients use it for both meanings, so it is read as ASCII.
        if (name == ascii.name || name == "94J") {
            target = ascii;
        } else {
            target = found != characterSets.end() ? *found : unknown;
        }
    }

    /// Reads two bytes of length, the name of an encoding, and text in that encoding.
    void readExtendedSegment() {
        if (text_.size() < 2) {
            text_ = {};
            return;
        }
        const auto length = (static_cast<std::size_t>(static_cast<std::uint8_t>(text_[0]) & 0x7FU) << 7U) |
                            (static_cast<std::uint8_t>(text_[1]) & 0x7FU);
        const auto segment = text_.substr(2, length);
        text_.remove_prefix(2 + segment.size());
        const bool isSegmentCut = isCut_ && segment.size() < length;
        const auto nameEnd = segment.find(startOfText);
        if (nameEnd == std::string_view::npos) {
            out_ += isSegmentCut ? std::string_view() : replacement;
            return;
        }
        std::string name(segment.substr(0, nameEnd));
        // X's registry adds a number to the name; converters use the name without it.
        if (name.ends_with("-0")) {
            name.resize(name.size() - 2);
        }
        auto decoded = convert(segment.substr(nameEnd + 1), name);
        if (isSegmentCut && decoded.ends_with(replacement)) {
            decoded.resize(decoded.size() - replacement.size());
        }
        out_ += decoded;
    }

    std::string_view text_;
    bool isCut_;
    CharacterSet left_ = ascii;
    CharacterSet right_ = latin1;
    bool isUtf8_ = false;
    std::string out_;
};

}  // namespace

std::string compoundTextToUtf8(std::string_view text, bool isCut) {
    return Reader(text, isCut).read();
}

}  // namespace ferrowyn

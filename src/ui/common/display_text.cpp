#include "ui/common/display_text.h"

#include <QList>
#include <algorithm>
#include <cstddef>

#include "core/text.h"

namespace ferrowyn::display_text {

namespace {

/// Only this much of a text is read. A UTF-16 unit takes at most three bytes of UTF-8.
constexpr std::size_t maximumBytes = static_cast<std::size_t>(maximumLength) * 3 + 4;

std::string_view beginning(std::string_view utf8) {
    if (utf8.size() <= maximumBytes) {
        return utf8;
    }
    std::size_t end = maximumBytes;
    const auto isContinuation = [&](std::size_t at) { return (static_cast<unsigned char>(utf8[at]) & 0xC0U) == 0x80U; };
    while (end > 0 && isContinuation(end)) {
        --end;
    }
    return utf8.substr(0, end);
}

bool breaksLine(QChar unit) {
    return unit.category() == QChar::Other_Control || unit == QChar::LineSeparator || unit == QChar::ParagraphSeparator;
}

}  // namespace

QString fromUtf8(std::string_view utf8) {
    return QString::fromUtf8(utf8.data(), static_cast<qsizetype>(utf8.size()));
}

QString singleLine(std::string_view utf8) {
    const std::string_view start = beginning(utf8);
    QString text = fromUtf8(start);
    std::replace_if(text.begin(), text.end(), breaksLine, QChar(u' '));
    if (text.size() > maximumLength || start.size() < utf8.size()) {
        qsizetype kept = std::min<qsizetype>(text.size(), maximumLength);
        if (kept > 0 && text.at(kept - 1).isHighSurrogate()) {
            --kept;
        }
        text.truncate(kept);
        text += QChar(u'…');
    }
    return text;
}

bool hasVisibleCharacters(const QString& text) {
    const auto scalars = text.toUcs4();
    return std::any_of(scalars.begin(), scalars.end(), [](char32_t scalar) {
        switch (QChar::category(scalar)) {
            case QChar::Other_Control:
            case QChar::Other_Format:
            case QChar::Separator_Space:
            case QChar::Separator_Line:
            case QChar::Separator_Paragraph:
            case QChar::Mark_NonSpacing:
            case QChar::Mark_Enclosing:
                return false;
            default:
                // The Hangul fillers and the blank Braille pattern are letters and symbols without ink.
                return scalar != 0x115F && scalar != 0x1160 && scalar != 0x3164 && scalar != 0xFFA0 && scalar != 0x2800;
        }
    });
}

std::vector<Range> rangesOfCharacters(std::string_view utf8, const std::vector<std::int32_t>& positions) {
    std::vector<Range> ranges;
    if (positions.empty()) {
        return ranges;
    }
    const std::string_view text = beginning(utf8);
    std::vector<std::uint32_t> ends;
    text::findCharacterEnds(text, ends);
    std::size_t bytes = 0;
    int units = 0;
    for (const std::int32_t position : positions) {
        if (position < 0 || static_cast<std::size_t>(position) >= ends.size()) {
            continue;
        }
        const auto character = static_cast<std::size_t>(position);
        const std::size_t first = character == 0 ? 0 : ends[character - 1];
        units += static_cast<int>(fromUtf8(text.substr(bytes, first - bytes)).size());
        const int length = static_cast<int>(fromUtf8(text.substr(first, ends[character] - first)).size());
        if (!ranges.empty() && ranges.back().start + ranges.back().length == units) {
            ranges.back().length += length;
        } else {
            ranges.push_back({units, length});
        }
        units += length;
        bytes = ends[character];
    }
    return ranges;
}

}  // namespace ferrowyn::display_text

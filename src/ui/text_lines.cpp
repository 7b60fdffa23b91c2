#include "ui/text_lines.h"

#include <cmath>

namespace ferrowyn {

namespace {

/// Several panels full: two lines a row, 16 rows at most, while the user types or scrolls.
constexpr int keptLines = 512;

}  // namespace

TextLines::TextLines() : lines_(keptLines) {}

const TextLine& TextLines::line(const QString& text, TextStyle style, double maximumWidth,
                                const TextEmphasis& emphasis) {
    const Key key{text, style, maximumWidth, emphasis.ranges, emphasis.color.rgba(), emphasis.isUnderlined};
    if (const TextLine* const kept = lines_.object(key)) {
        return *kept;
    }
    ++shapedLineCount_;
    auto* const made = new TextLine(text, style, maximumWidth, emphasis);  // NOLINT: QCache takes ownership.
    lines_.insert(key, made);
    return *made;
}

const TextLine::Metrics& TextLines::metrics(TextStyle style) {
    auto& kept = metrics_.at(static_cast<std::size_t>(style));
    if (!kept) {
        kept = TextLine::metrics(style);
    }
    return *kept;
}

double TextLines::centredBaseline(TextStyle style, double top, double height, double devicePixelRatio) {
    const double baseline = top + (height + metrics(style).capHeight) / 2;
    return std::round(baseline * devicePixelRatio) / devicePixelRatio;
}

void TextLines::clear() {
    lines_.clear();
    metrics_.fill(std::nullopt);
}

}  // namespace ferrowyn

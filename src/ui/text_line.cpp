#include "ui/text_line.h"

#include <QFontMetricsF>
#include <QPainter>
#include <QTextOption>
#include <algorithm>
#include <cmath>
#include <utility>

namespace ferrowyn {

namespace {

constexpr double unlimitedWidth = 1e6;
const QChar ellipsis(u'…');

QTextOption singleLineOption() {
    QTextOption option(Qt::AlignLeft | Qt::AlignAbsolute);
    option.setTextDirection(Qt::LayoutDirectionAuto);
    // Where the width ends, not at the last word that fits.
    option.setWrapMode(QTextOption::WrapAnywhere);
    option.setUseDesignMetrics(true);
    return option;
}

}  // namespace

TextLine::TextLine(const QString& text, TextStyle style, double maximumWidth, TextEmphasis emphasis)
    : emphasis_(std::move(emphasis)) {
    layout_.setFont(fontFor(style));
    layout_.setTextOption(singleLineOption());
    layout_.setCacheEnabled(true);
    shape(text, unlimitedWidth);
    if (width_ > maximumWidth) {
        isElided_ = true;
        shape(elided(text, maximumWidth), unlimitedWidth);
    }
}

void TextLine::shape(const QString& text, double lineWidth) {
    layout_.setText(text);
    QList<QTextLayout::FormatRange> formats;
    for (const auto& range : emphasis_.ranges) {
        const int start = std::min(range.start, static_cast<int>(text.size()));
        const int end = std::min(range.start + range.length, static_cast<int>(text.size()));
        if (start == end) {
            continue;
        }
        QTextLayout::FormatRange format{start, end - start, {}};
        format.format.setFontWeight(emphasisedWeight());
        format.format.setForeground(emphasis_.color);
        formats.append(format);
    }
    layout_.setFormats(formats);
    layout_.beginLayout();
    QTextLine line = layout_.createLine();
    if (line.isValid()) {
        line.setLineWidth(lineWidth);
        width_ = line.naturalTextWidth();
        ascent_ = line.ascent();
    }
    layout_.endLayout();
}

QString TextLine::elided(const QString& text, double maximumWidth) {
    const double ellipsisWidth = QFontMetricsF(layout_.font()).horizontalAdvance(ellipsis);
    shape(text, std::max(maximumWidth - ellipsisWidth, 1.0));
    // The line breaks between user-perceived characters, in the order in which the text is read.
    qsizetype kept = layout_.lineCount() > 0 ? layout_.lineAt(0).textLength() : 0;
    while (kept > 0 && text.at(kept - 1).isSpace()) {
        --kept;
    }
    return text.left(kept) + ellipsis;
}

void TextLine::paint(QPainter& painter, double left, double baseline, const QColor& color) const {
    painter.setPen(color);
    layout_.draw(&painter, QPointF(left, baseline - ascent_));
    if (!emphasis_.isUnderlined || layout_.lineCount() == 0) {
        return;
    }
    constexpr double gap = 1.5;
    constexpr double thickness = 2;
    const QTextLine line = layout_.lineAt(0);
    for (const auto& range : layout_.formats()) {
        const double start = line.cursorToX(range.start);
        const double end = line.cursorToX(range.start + range.length);
        painter.fillRect(QRectF(left + std::min(start, end), baseline + gap, std::abs(end - start), thickness),
                         emphasis_.color);
    }
}

TextLine::Metrics TextLine::metrics(TextStyle style) {
    const QFontMetricsF metrics(fontFor(style));
    return {metrics.ascent(), metrics.descent(), metrics.capHeight()};
}

}  // namespace ferrowyn

#include "ui/common/text_line.h"

#include <QFontMetricsF>
#include <QGuiApplication>
#include <QPainter>
#include <QScreen>
#include <QTextOption>
#include <algorithm>
#include <cmath>
#include <utility>

namespace ferrowyn {

namespace {

struct Description {
    double size;
    QFont::Weight weight;
};

Description describe(TextStyle style) {
    switch (style) {
        case TextStyle::searchText:
            return {15, QFont::Normal};
        case TextStyle::rowTitle:
            return {13.5, QFont::DemiBold};
        case TextStyle::rowAppName:
        case TextStyle::hint:
        case TextStyle::emptyDetail:
        case TextStyle::menuHeaderSubtitle:
            return {11, QFont::Normal};
        case TextStyle::menuItem:
        case TextStyle::menuHeaderTitle:
            return {13, QFont::Normal};
        case TextStyle::menuSectionTitle:
            return {10, QFont::Normal};
        case TextStyle::cardOrdinal:
        case TextStyle::badge:
            return {10, QFont::Medium};
        case TextStyle::groupName:
            return {11, QFont::DemiBold};
        case TextStyle::groupCount:
            return {9, QFont::Medium};
        case TextStyle::rowCount:
            return {11, QFont::Medium};
        case TextStyle::keyCap:
            return {10.5, QFont::Medium};
        case TextStyle::emptyTitle:
            return {13, QFont::Medium};
        case TextStyle::button:
            return {12, QFont::Medium};
        case TextStyle::paneTitle:
            return {17, QFont::Bold};
        case TextStyle::sectionTitle:
            return {12, QFont::DemiBold};
        case TextStyle::body:
            return {13, QFont::Normal};
        case TextStyle::bodyEmphasised:
            return {13, QFont::DemiBold};
        case TextStyle::note:
            return {11, QFont::Normal};
        case TextStyle::productName:
            return {20, QFont::Bold};
    }
    return {12, QFont::Normal};
}

}  // namespace

QFont fontFor(TextStyle style) {
    constexpr double pointsPerInch = 72;
    const auto [size, weight] = describe(style);
    QFont font = QGuiApplication::font();
    // QFont takes fractional point sizes, but only whole pixel sizes. All fonts of the program have one resolution.
    const QScreen* const screen = QGuiApplication::primaryScreen();
    const double resolution = screen != nullptr ? screen->logicalDotsPerInchY() : pointsPerInch;
    font.setPointSizeF(size * pointsPerInch / resolution);
    font.setWeight(weight);
    font.setItalic(false);
    // Horizontal hinting would distort the widths at these small, fractional sizes.
    font.setHintingPreference(QFont::PreferVerticalHinting);
    return font;
}

QFont::Weight emphasisedWeight() {
    return QFont::ExtraBold;
}

namespace {

const QChar ellipsis(u'…');

QTextOption singleLineOption() {
    QTextOption option(Qt::AlignLeft | Qt::AlignAbsolute);
    option.setTextDirection(Qt::LayoutDirectionAuto);
    // Break where the width ends, not at the last word that fits.
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
    // Qt breaks the line between user-perceived characters, in reading order.
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

namespace {

/// Enough for several panels: a panel has at most 16 rows, and a row two lines.
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

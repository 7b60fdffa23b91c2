#pragma once

#include <QColor>
#include <QString>
#include <QTextLayout>
#include <vector>

#include "ui/display_text.h"
#include "ui/text_style.h"

class QPainter;

namespace ferrowyn {

/// How matched characters stand out in a line.
struct TextEmphasis {
    std::vector<display_text::Range> ranges;
    QColor color;
    bool isUnderlined = false;
};

/// One line of shaped text, elided at its end to fit a width. It keeps its own direction, but stands at the left of
/// where it is painted. Shaping is the expensive part of painting text: lines are made once and kept. Main thread.
class TextLine {
public:
    TextLine(const QString& text, TextStyle style, double maximumWidth, TextEmphasis emphasis = {});

    [[nodiscard]] double width() const { return width_; }
    [[nodiscard]] bool isElided() const { return isElided_; }
    /// What is left of the text, the ellipsis included.
    [[nodiscard]] QString shownText() const { return layout_.text(); }

    /// From `left`, with the letters standing on `baseline`.
    void paint(QPainter& painter, double left, double baseline, const QColor& color) const;

    /// Of the style's own font, whatever fallback fonts a text needs.
    struct Metrics {
        double ascent = 0;
        double descent = 0;
        double capHeight = 0;
    };
    [[nodiscard]] static Metrics metrics(TextStyle style);

private:
    void shape(const QString& text, double lineWidth);
    [[nodiscard]] QString elided(const QString& text, double maximumWidth);

    TextEmphasis emphasis_;
    QTextLayout layout_;
    double width_ = 0;
    double ascent_ = 0;
    bool isElided_ = false;
};

}  // namespace ferrowyn

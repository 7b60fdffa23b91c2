#pragma once

#include <QCache>
#include <QColor>
#include <QFont>
#include <QString>
#include <QTextLayout>
#include <array>
#include <optional>
#include <vector>

#include "ui/common/display_text.h"

class QPainter;

namespace ferrowyn {

/// What a text is used for, which decides its size and weight. The family is the desktop's.
enum class TextStyle {
    searchText,
    // Rows and cards.
    rowTitle,
    rowAppName,
    cardOrdinal,
    badge,
    groupName,
    groupCount,
    rowCount,
    keyCap,
    hint,
    emptyTitle,
    emptyDetail,
    menuItem,
    menuHeaderTitle,
    menuHeaderSubtitle,
    menuSectionTitle,
    button,
    // Utility windows.
    paneTitle,
    sectionTitle,
    body,
    bodyEmphasised,
    note,
    productName,
};

/// Main thread: reads the application's font and the screen's resolution.
[[nodiscard]] QFont fontFor(TextStyle style);
/// The weight of matched characters in a title.
[[nodiscard]] QFont::Weight emphasisedWeight();

/// How matched characters stand out in a line.
struct TextEmphasis {
    std::vector<display_text::Range> ranges;
    QColor color;
    bool isUnderlined = false;
};

/// One line of shaped text, elided at its end to fit a width. It is painted from its left edge, also when the text runs
/// from right to left. Shaping is the slow part of painting text, so lines are made once and kept. Main thread.
class TextLine {
public:
    /// Wider than any line.
    static constexpr double unlimitedWidth = 1e6;

    TextLine(const QString& text, TextStyle style, double maximumWidth, TextEmphasis emphasis = {});

    [[nodiscard]] double width() const { return width_; }
    /// The text that is painted, with the ellipsis if it is elided.
    [[nodiscard]] QString shownText() const { return layout_.text(); }

    /// Paints the line with its left edge at `left` and its letters on `baseline`.
    void paint(QPainter& painter, double left, double baseline, const QColor& color) const;

    /// Of the style's font. Fallback fonts for single characters do not change them.
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
};

/// Keeps the lines that were painted lately, so that a frame with the same texts shapes nothing. Main thread.
class TextLines {
public:
    TextLines();

    /// Valid until the next call.
    [[nodiscard]] const TextLine& line(const QString& text, TextStyle style, double maximumWidth,
                                       const TextEmphasis& emphasis = {});
    [[nodiscard]] const TextLine::Metrics& metrics(TextStyle style);
    /// The baseline that centres capital letters between `top` and `top + height`, aligned to a device pixel.
    [[nodiscard]] double centredBaseline(TextStyle style, double top, double height, double devicePixelRatio);
    /// Forgets all lines. To be called when the desktop's fonts have changed.
    void clear();

    /// How many lines this object has shaped; for tests and benchmarks.
    [[nodiscard]] int shapedLineCount() const { return shapedLineCount_; }

private:
    struct Key {
        QString text;
        TextStyle style;
        double maximumWidth;
        std::vector<display_text::Range> emphasised;
        QRgb emphasisColor;
        bool isUnderlined;
        friend bool operator==(const Key&, const Key&) = default;
        friend size_t qHash(const Key& key, size_t seed) {
            return qHashMulti(seed, key.text, static_cast<int>(key.style), key.maximumWidth, key.emphasised.size(),
                              key.emphasisColor);
        }
    };

    QCache<Key, TextLine> lines_;
    std::array<std::optional<TextLine::Metrics>, static_cast<std::size_t>(TextStyle::button) + 1> metrics_;
    int shapedLineCount_ = 0;
};

}  // namespace ferrowyn

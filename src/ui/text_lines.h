#pragma once

#include <QCache>
#include <QString>
#include <array>
#include <optional>
#include <vector>

#include "ui/text_line.h"

namespace ferrowyn {

/// Keeps the shaped lines that were painted lately, so that a frame with the same texts shapes nothing. Main thread.
class TextLines {
public:
    TextLines();

    /// Valid until the next call.
    [[nodiscard]] const TextLine& line(const QString& text, TextStyle style, double maximumWidth,
                                       const TextEmphasis& emphasis = {});
    [[nodiscard]] const TextLine::Metrics& metrics(TextStyle style);
    /// The baseline on which capital letters stand centred in a height, on a whole device pixel.
    [[nodiscard]] double centredBaseline(TextStyle style, double top, double height, double devicePixelRatio);
    /// The desktop's fonts have changed.
    void clear();

    /// How many lines were shaped since the program started; a measure for tests.
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

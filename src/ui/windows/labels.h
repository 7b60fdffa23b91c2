#pragma once

#include <QLabel>
#include <string>
#include <string_view>

#include "core/texts.h"
#include "ui/common/images.h"
#include "ui/common/text_line.h"
#include "ui/windows/utility_theme.h"

namespace ferrowyn {

/// A text of the utility windows. It wraps into as many lines as it needs and may have a symbol before it. It follows
/// the desktop's colours and fonts. Main thread.
class TextLabel final : public QLabel {
    Q_OBJECT

public:
    explicit TextLabel(TextStyle style, Tone tone = Tone::primary, QWidget* parent = nullptr);
    TextLabel(const Phrase& text, TextStyle style, Tone tone = Tone::primary);
    /// The layout to which the caller adds it takes ownership.
    [[nodiscard]] static TextLabel* centred(const Phrase& text, TextStyle style, Tone tone);
    /// A key cap, which names keys. It has a frame, as no other label has. Ownership is as above.
    [[nodiscard]] static TextLabel* keyCap();

    void setPhrase(const Phrase& text);
    /// An empty name removes the symbol.
    void setSymbol(std::string_view name, Tone tone, double points = 13);
    [[nodiscard]] const std::string& symbol() const { return symbol_; }

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void adopt();

    TextStyle style_;
    Tone tone_;
    std::string symbol_;
    Tone symbolTone_ = Tone::primary;
    double symbolPoints_ = 0;
    SymbolImages symbols_;
};

}  // namespace ferrowyn

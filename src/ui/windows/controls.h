#pragma once

#include <QCheckBox>
#include <QComboBox>
#include <QPushButton>
#include <QRadioButton>
#include <QSpinBox>
#include <string_view>

#include "core/texts.h"

namespace ferrowyn {

// The controls of the utility windows, all drawn by `ControlStyle`. The layout to which the caller adds one takes
// ownership. Main thread.

[[nodiscard]] QPushButton* makeButton(const Phrase& text);
/// What the user most likely wants.
[[nodiscard]] QPushButton* makePrimaryButton(const Phrase& text);
/// Text in the colour of links.
[[nodiscard]] QPushButton* makeLink(const Phrase& text);
/// A button with only a symbol; the name is for the tooltip and for screen readers.
[[nodiscard]] QPushButton* makeSymbolButton(const QString& name, std::string_view symbol);
/// One of several choices side by side, with its symbol above its title. The arrow keys choose the neighbours.
[[nodiscard]] QRadioButton* makeSegment(std::string_view symbol, const Phrase& title);
/// A number between two buttons that decrease and increase it by one, and go on while they are held.
[[nodiscard]] QSpinBox* makeStepper(int minimum, int maximum);

/// One row of a group: a text and, at the right edge, a switch. The whole row can be clicked. The toolkit's own check
/// box does not wrap its text.
class SwitchRow final : public QCheckBox {
    Q_OBJECT

public:
    explicit SwitchRow(const Phrase& text);

    [[nodiscard]] QSize minimumSizeHint() const override;
    [[nodiscard]] bool hasHeightForWidth() const override { return true; }
    [[nodiscard]] int heightForWidth(int width) const override;
};

/// A drop-down list that shows the chosen text. Assistive technology gets the control's name and, as its value, the
/// text; of the toolkit's own combo box it gets the text as the name.
class ChoiceBox final : public QComboBox {
    Q_OBJECT

public:
    ChoiceBox();

protected:
    bool event(QEvent* event) override;

private:
    void adopt();
};

}  // namespace ferrowyn

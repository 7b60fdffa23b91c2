#pragma once

#include <QWidget>
#include <vector>

#include "core/published.h"
#include "core/texts.h"
#include "services/preferences.h"
#include "ui/windows/scroll_areas.h"

class QAbstractButton;
class QVBoxLayout;

namespace ferrowyn {

class TextLabel;

/// Distances inside the grouped boxes of the windows, in points.
namespace group_metrics {

/// From the box's edge to what stands in it.
inline constexpr int rowInset = 14;
/// The least height of a row, and the least distance of its text from the row's edges.
inline constexpr int rowHeight = 42;
inline constexpr int rowPadding = 11;
/// A note follows its row at once.
inline constexpr int belowNote = 12;

}  // namespace group_metrics

/// A box of rows with hairlines between them. What is added belongs to it. Main thread.
class SettingsGroup final : public QWidget {
    Q_OBJECT

public:
    SettingsGroup();

    /// A row of its own, below a hairline unless it is the first one to be seen.
    void addRow(QWidget* row);
    /// The same for one that keeps the distance to the edges that a text has. Answers with what to hide for the row to
    /// be gone, as the next one does.
    QWidget* addInsetRow(QWidget* row);
    /// Text and control beside each other, the control at the right edge.
    QWidget* addRow(QWidget* text, QWidget* control);
    /// Close under the row before it. Answers with what to hide for the note to be gone.
    QWidget* addNote(TextLabel* note);
    /// Takes the row out and deletes it.
    void removeRow(QWidget* row);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QVBoxLayout* layout_ = nullptr;
    std::vector<QWidget*> rows_;
};

/// A page of the settings window: its title over groups of rows, which scroll when they do not fit. Main thread.
class SettingsPaneView : public PlainScrollArea {
    Q_OBJECT

public:
    explicit SettingsPaneView(const Phrase& title);

    /// Wide enough for every control: what does not fit in height scrolls, what does not fit in width would be lost.
    [[nodiscard]] QSize minimumSizeHint() const override;

protected:
    SettingsGroup& addGroup();
    /// The section's title stands over the box and names it.
    SettingsGroup& addGroup(const Phrase& sectionTitle);
    /// Anything else, below what is there.
    void addWidget(QWidget* widget, Qt::Alignment alignment = {});
    /// Kept as long as the pane: what its controls follow.
    void keep(Subscription subscription);

private:
    void insert(QWidget* widget, int spaceAbove, Qt::Alignment alignment);

    QVBoxLayout* column_ = nullptr;
    std::vector<Subscription> subscriptions_;
};

/// The button shows the setting, and the user's click sets it. The token ends the first half; the setting outlives the
/// button.
[[nodiscard]] Subscription bindSwitch(QAbstractButton& button, Preferences::Setting<bool>& setting);

}  // namespace ferrowyn

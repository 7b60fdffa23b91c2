#pragma once

#include <QWidget>
#include <functional>
#include <vector>

#include "core/published.h"
#include "core/texts.h"
#include "services/preferences.h"
#include "ui/windows/scroll_areas.h"
#include "ui/windows/settings_model.h"

class QAbstractButton;
class QVBoxLayout;

namespace ferrowyn {

class TextLabel;

/// Distances inside the grouped boxes of the utility windows, in points.
namespace group_metrics {

/// From the box's edge to its content.
inline constexpr int rowInset = 14;
/// The minimum height of a row, and the minimum distance of its text from the upper and lower edge.
inline constexpr int rowHeight = 42;
inline constexpr int rowPadding = 11;
/// Below a note. There is no distance between a note and its row.
inline constexpr int belowNote = 12;

}  // namespace group_metrics

/// A box of rows with hairlines between them, which the toolkit's group box has not. It owns what is added. Main
/// thread.
class SettingsGroup final : public QWidget {
    Q_OBJECT

public:
    SettingsGroup();

    /// Adds a row. Each visible row but the first has a hairline above it.
    void addRow(QWidget* row);
    /// Adds a row with the insets of a text. Returns the widget to hide when the row is to be hidden.
    QWidget* addInsetRow(QWidget* row);
    /// Adds a row with a text and, at its end, a control. Returns the widget to hide when the row is to be hidden.
    QWidget* addRow(QWidget* text, QWidget* control);
    /// Adds a note directly below the last row. Returns the widget to hide when the note is to be hidden.
    QWidget* addNote(TextLabel* note);
    /// Removes and deletes the row.
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

    /// Wide enough for every control, because the page scrolls only vertically.
    [[nodiscard]] QSize minimumSizeHint() const override;

protected:
    SettingsGroup& addGroup();
    /// Adds a group with a title above it, which is also the name of the group.
    SettingsGroup& addGroup(const Phrase& sectionTitle);
    /// Adds another widget below the last one.
    void addWidget(QWidget* widget, Qt::Alignment alignment = {});
    /// Keeps the subscription of a control as long as the pane.
    void keep(Subscription subscription);

private:
    void insert(QWidget* widget, int spaceAbove, Qt::Alignment alignment);

    QVBoxLayout* column_ = nullptr;
    std::vector<Subscription> subscriptions_;
};

/// The caps show the keys of the lines, which depend on the trigger. As many caps as lines; all of them outlive the
/// token.
[[nodiscard]] Subscription bindKeyCaps(
    const std::vector<TextLabel*>& caps, const Published<SwitcherModifier>& trigger,
    std::function<std::vector<key_lines::KeyLine>(SwitcherModifier trigger)> linesFor);

/// The button shows the setting, and the user's click sets it. Dropping the token ends only the former. The setting
/// outlives the button.
[[nodiscard]] Subscription bindSwitch(QAbstractButton& button, Preferences::Setting<bool>& setting);

}  // namespace ferrowyn

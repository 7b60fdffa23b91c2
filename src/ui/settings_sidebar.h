#pragma once

#include <QListWidget>

#include "core/switcher_options.h"

namespace ferrowyn {

/// The list of panes. The arrow keys and the mouse choose one; it always has one chosen. Main thread.
class SettingsSidebar final : public QListWidget {
    Q_OBJECT

public:
    /// Longer titles make it wider, up to a point.
    static constexpr int barWidth = 190;
    static constexpr int widestBar = 280;

    explicit SettingsSidebar(const WindowTexts& texts);

    [[nodiscard]] SettingsPane selection() const;
    void select(SettingsPane pane);

protected:
    bool event(QEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    [[nodiscard]] QItemSelectionModel::SelectionFlags selectionCommand(const QModelIndex& index,
                                                                       const QEvent* event) const override;

private:
    void adopt();
};

}  // namespace ferrowyn

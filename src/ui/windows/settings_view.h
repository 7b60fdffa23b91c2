#pragma once

#include <QListWidget>
#include <QWidget>

#include "core/switcher_options.h"
#include "ui/windows/settings_model.h"

class QStackedWidget;

namespace ferrowyn {

struct Platform;

/// The list of panes. The arrow keys and the mouse select one; one is always selected. Main thread.
class SettingsSidebar final : public QListWidget {
    Q_OBJECT

public:
    /// In points. Longer titles make the bar wider, up to `widestBar`.
    static constexpr int barWidth = 190;
    static constexpr int widestBar = 280;

    explicit SettingsSidebar(const UtilityTexts& texts);

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

/// The content of the settings window: the sidebar and the selected pane. Each control follows its service and changes
/// it at once; nothing needs saving. Main thread. The platform and the services outlive it.
class SettingsView final : public QWidget {
    Q_OBJECT

public:
    SettingsView(const Platform& platform, const SettingsServices& services);
    ~SettingsView() override;

    [[nodiscard]] SettingsPane selection() const;
    void select(SettingsPane pane);

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    SettingsSidebar* sidebar_ = nullptr;
    QStackedWidget* panes_ = nullptr;
};

}  // namespace ferrowyn

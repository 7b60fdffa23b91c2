#pragma once

#include <QWidget>
#include <vector>

#include "core/settings_pane.h"
#include "ui/settings_services.h"

class QStackedWidget;

namespace ferrowyn {

struct Platform;
class SettingsSidebar;

/// The content of the settings window: a sidebar of panes beside a form. Every control is bound to its service both
/// ways; nothing is applied later or needs saving. Main thread. The platform and the services outlive it.
class SettingsView final : public QWidget {
    Q_OBJECT

public:
    SettingsView(const Platform& platform, const SettingsServices& services);
    ~SettingsView() override;

    [[nodiscard]] SettingsPane selection() const { return selection_; }
    void select(SettingsPane pane);

    [[nodiscard]] QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    SettingsPane selection_ = SettingsPane::general;
    SettingsSidebar* sidebar_ = nullptr;
    QStackedWidget* panes_ = nullptr;
};

}  // namespace ferrowyn

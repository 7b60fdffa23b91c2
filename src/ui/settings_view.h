#pragma once

#include <QWidget>

#include "core/switcher_options.h"
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

#pragma once

#include <vector>

#include "core/published.h"
#include "core/texts.h"
#include "ui/plain_scroll_area.h"

class QVBoxLayout;

namespace ferrowyn {

class SettingsGroup;

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

}  // namespace ferrowyn

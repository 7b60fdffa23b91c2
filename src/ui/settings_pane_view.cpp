#include "ui/settings_pane_view.h"

#include <QScrollBar>
#include <QVBoxLayout>
#include <utility>

#include "ui/accessible_roles.h"
#include "ui/settings_group.h"
#include "ui/text_label.h"
#include "ui/translated.h"

namespace ferrowyn {

namespace {

constexpr int sideMargin = 26;
constexpr int topMargin = 20;
constexpr int bottomMargin = 26;
constexpr int belowTitle = 14;
constexpr int betweenSections = 18;
constexpr int belowSectionTitle = 7;
/// A section's title stands a little inside the box below it, whose corners are round.
constexpr int titleInset = 3;

}  // namespace

SettingsPaneView::SettingsPaneView(const Phrase& title) {
    auto* const form = new QWidget;
    column_ = new QVBoxLayout(form);
    column_->setContentsMargins(sideMargin, topMargin, sideMargin, bottomMargin);
    column_->setSpacing(0);
    auto* const heading = new TextLabel(title, TextStyle::paneTitle);
    column_->addWidget(heading);
    // What is added later stands before it.
    column_->addStretch(1);

    setContent(form);
    setAccessibleRole(*this, QAccessible::Pane);
    setAccessibleName(translated(title));
}

QSize SettingsPaneView::minimumSizeHint() const {
    return {widget()->minimumSizeHint().width() + verticalScrollBar()->sizeHint().width(),
            PlainScrollArea::minimumSizeHint().height()};
}

SettingsGroup& SettingsPaneView::addGroup() {
    auto* const group = new SettingsGroup;
    addWidget(group);
    return *group;
}

SettingsGroup& SettingsPaneView::addGroup(const Phrase& sectionTitle) {
    auto* const title = new TextLabel(sectionTitle, TextStyle::sectionTitle, Tone::secondary);
    title->setContentsMargins(titleInset, 0, titleInset, 0);
    addWidget(title);
    auto* const group = new SettingsGroup;
    group->setAccessibleName(translated(sectionTitle));
    insert(group, belowSectionTitle, {});
    return *group;
}

void SettingsPaneView::addWidget(QWidget* widget, Qt::Alignment alignment) {
    constexpr int headingAndStretch = 2;
    insert(widget, column_->count() == headingAndStretch ? belowTitle : betweenSections, alignment);
}

void SettingsPaneView::insert(QWidget* widget, int spaceAbove, Qt::Alignment alignment) {
    column_->insertSpacing(column_->count() - 1, spaceAbove);
    column_->insertWidget(column_->count() - 1, widget, 0, alignment);
}

void SettingsPaneView::keep(Subscription subscription) {
    subscriptions_.push_back(std::move(subscription));
}

}  // namespace ferrowyn

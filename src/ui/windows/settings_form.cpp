#include "ui/windows/settings_form.h"

#include <QAbstractButton>
#include <QHBoxLayout>
#include <QPainter>
#include <QScrollBar>
#include <QVBoxLayout>
#include <algorithm>
#include <utility>

#include "ui/common/accessibility.h"
#include "ui/common/colors.h"
#include "ui/common/translation.h"
#include "ui/windows/labels.h"
#include "ui/windows/utility_theme.h"

namespace ferrowyn {

namespace {

constexpr double cornerRadius = 8;
constexpr int betweenTextAndControl = 12;

}  // namespace

SettingsGroup::SettingsGroup() : layout_(new QVBoxLayout(this)) {
    layout_->setContentsMargins(0, 0, 0, 0);
    layout_->setSpacing(0);
    QSizePolicy policy(QSizePolicy::Expanding, QSizePolicy::Preferred);
    policy.setHeightForWidth(true);
    setSizePolicy(policy);
    setAccessibleRole(*this, QAccessible::Grouping);
}

void SettingsGroup::addRow(QWidget* row) {
    layout_->addWidget(row);
    rows_.push_back(row);
}

QWidget* SettingsGroup::addInsetRow(QWidget* row) {
    auto* const frame = new QWidget;
    auto* const inside = new QVBoxLayout(frame);
    inside->setContentsMargins(group_metrics::rowInset, group_metrics::rowPadding, group_metrics::rowInset,
                               group_metrics::rowPadding);
    inside->addWidget(row);
    frame->setMinimumHeight(group_metrics::rowHeight);
    addRow(frame);
    return frame;
}

QWidget* SettingsGroup::addRow(QWidget* text, QWidget* control) {
    constexpr int aboveControl = 7;
    constexpr int narrowestText = 140;
    text->setMinimumWidth(narrowestText);
    auto* const row = new QWidget;
    auto* const line = new QHBoxLayout(row);
    line->setContentsMargins(group_metrics::rowInset, aboveControl, group_metrics::rowInset, aboveControl);
    line->setSpacing(betweenTextAndControl);
    line->addWidget(text, 1);
    line->addWidget(control, 0);
    row->setMinimumHeight(group_metrics::rowHeight);
    addRow(row);
    return row;
}

QWidget* SettingsGroup::addNote(TextLabel* note) {
    auto* const frame = new QWidget;
    auto* const inside = new QVBoxLayout(frame);
    inside->setContentsMargins(group_metrics::rowInset, 0, group_metrics::rowInset, group_metrics::belowNote);
    inside->addWidget(note);
    layout_->addWidget(frame);
    return frame;
}

void SettingsGroup::removeRow(QWidget* row) {
    std::erase(rows_, row);
    layout_->removeWidget(row);
    row->hide();
    // Deleted later, because the caller may be a button in the row.
    row->deleteLater();
}

void SettingsGroup::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const UtilityTheme theme = UtilityTheme::current();
    control_painting::paintBox(painter, rect(), cornerRadius, theme.groupFill, theme.groupEdge);
    const double lineWidth = hairline::width(painter.deviceTransform().m11());
    bool isFirst = true;
    for (const QWidget* const row : rows_) {
        if (row->isHidden()) {
            continue;
        }
        if (!isFirst) {
            painter.fillRect(
                QRectF(group_metrics::rowInset, row->y(), width() - 2 * group_metrics::rowInset, lineWidth),
                theme.hairline);
        }
        isFirst = false;
    }
}

namespace {

constexpr int sideMargin = 26;
constexpr int topMargin = 20;
constexpr int bottomMargin = 26;
constexpr int belowTitle = 14;
constexpr int betweenSections = 18;
constexpr int belowSectionTitle = 7;
/// A section's title begins a little further inside than the box below it, which has round corners.
constexpr int titleInset = 3;

}  // namespace

SettingsPaneView::SettingsPaneView(const Phrase& title) {
    auto* const form = new QWidget;
    column_ = new QVBoxLayout(form);
    column_->setContentsMargins(sideMargin, topMargin, sideMargin, bottomMargin);
    column_->setSpacing(0);
    auto* const heading = new TextLabel(title, TextStyle::paneTitle);
    column_->addWidget(heading);
    // Further widgets are inserted before the stretch.
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

Subscription bindKeyCaps(const std::vector<TextLabel*>& caps, const Published<SwitcherModifier>& trigger,
                         std::function<std::vector<key_lines::KeyLine>(SwitcherModifier trigger)> linesFor) {
    return trigger.subscribe([caps, make = std::move(linesFor)](SwitcherModifier chosen) {
        const auto lines = make(chosen);
        for (std::size_t index = 0; index < lines.size(); ++index) {
            caps.at(index)->setText(QString::fromStdString(lines.at(index).keys));
        }
    });
}

Subscription bindSwitch(QAbstractButton& button, Preferences::Setting<bool>& setting) {
    // `clicked` comes only from the user. `setChecked` below does not emit it, so it does not set the setting again.
    QObject::connect(&button, &QAbstractButton::clicked, &button, [&setting](bool isOn) { setting.set(isOn); });
    return setting.published().subscribe([&button](bool isOn) { button.setChecked(isOn); });
}

}  // namespace ferrowyn

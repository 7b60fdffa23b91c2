#include "ui/settings_group.h"

#include <QHBoxLayout>
#include <QPainter>
#include <QVBoxLayout>
#include <algorithm>

#include "ui/accessible_roles.h"
#include "ui/control_painting.h"
#include "ui/group_metrics.h"
#include "ui/hairline.h"
#include "ui/text_label.h"

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
    // Its own button may be what asked for this.
    row->deleteLater();
}

void SettingsGroup::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const WindowTheme theme = WindowTheme::current();
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

}  // namespace ferrowyn

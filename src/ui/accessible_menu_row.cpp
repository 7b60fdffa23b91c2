#include "ui/accessible_menu_row.h"

#include <QStringList>

#include "core/texts.h"
#include "ui/display_text.h"
#include "ui/menu_row_view.h"
#include "ui/status_menu_popup.h"
#include "ui/translated.h"

namespace ferrowyn {

namespace {

/// Whether the row's check mark says something by being away.
bool isCheckable(const MenuRow& row) {
    return row.action == MenuRow::Action::selectLayout || row.action == MenuRow::Action::toggleLaunchAtLogin;
}

QString nameOf(const MenuRow& row, const StatusItemTexts& texts) {
    switch (row.kind) {
        case MenuRow::Kind::header:
            return translated(texts.settingsButton);
        case MenuRow::Kind::separator:
            return {};
        case MenuRow::Kind::sectionTitle:
        case MenuRow::Kind::item:
            return display_text::singleLine(row.title);
    }
    return {};
}

/// What is shown beside the name: how the program is doing, or why a row is as it is.
QString descriptionOf(const MenuRow& row) {
    if (row.kind == MenuRow::Kind::header) {
        return display_text::singleLine(row.header.title) + QStringLiteral(", ") +
               display_text::singleLine(row.header.subtitle);
    }
    return display_text::singleLine(row.tooltip);
}

}  // namespace

bool AccessibleMenuRow::isValid() const {
    return index_ < popup_.geometryNow().rowCount();
}

QAccessibleInterface* AccessibleMenuRow::parent() const {
    return QAccessible::queryAccessibleInterface(&popup_);
}

QString AccessibleMenuRow::text(QAccessible::Text kind) const {
    if (!isValid()) {
        return {};
    }
    const MenuRow& row = popup_.rowAt(index_);
    if (kind == QAccessible::Name) {
        return nameOf(row, popup_.texts().statusItem);
    }
    if (kind == QAccessible::Description) {
        return descriptionOf(row);
    }
    if (kind == QAccessible::Accelerator) {
        return MenuRowView::keyEquivalentText(row, popup_.texts());
    }
    return {};
}

QRect AccessibleMenuRow::rect() const {
    if (!isValid()) {
        return {};
    }
    const bool isHeader = popup_.rowAt(index_).kind == MenuRow::Kind::header;
    const QRect local = toQt(isHeader ? popup_.gearRect(index_) : popup_.rowRect(index_)).toAlignedRect();
    return {popup_.mapToGlobal(local.topLeft()), local.size()};
}

QAccessible::Role AccessibleMenuRow::role() const {
    if (!isValid()) {
        return QAccessible::NoRole;
    }
    switch (popup_.rowAt(index_).kind) {
        case MenuRow::Kind::header:
            return QAccessible::Button;
        case MenuRow::Kind::separator:
            return QAccessible::Separator;
        case MenuRow::Kind::sectionTitle:
            return QAccessible::StaticText;
        case MenuRow::Kind::item:
            return QAccessible::MenuItem;
    }
    return QAccessible::NoRole;
}

QAccessible::State AccessibleMenuRow::state() const {
    QAccessible::State state;
    if (!isValid()) {
        state.invalid = true;
        return state;
    }
    const MenuRow& row = popup_.rowAt(index_);
    const bool isSelectable = popup_.isSelectable(index_);
    const bool isSelected = popup_.selectedRow() == index_;
    state.disabled = row.kind == MenuRow::Kind::item && !row.isEnabled;
    state.checkable = isCheckable(row);
    state.checked = row.isChecked;
    state.focusable = isSelectable;
    state.selectable = isSelectable;
    state.hotTracked = isSelected;
    state.selected = isSelected;
    state.focused = isSelected && popup_.isVisible();
    state.invisible = !popup_.isVisible();
    return state;
}

void* AccessibleMenuRow::interface_cast(QAccessible::InterfaceType type) {
    return type == QAccessible::ActionInterface ? static_cast<QAccessibleActionInterface*>(this) : nullptr;
}

QStringList AccessibleMenuRow::actionNames() const {
    return isValid() && popup_.isSelectable(index_) ? QStringList{pressAction()} : QStringList{};
}

void AccessibleMenuRow::doAction(const QString& name) {
    if (actionNames().contains(name)) {
        popup_.choose(index_);
    }
}

QStringList AccessibleMenuRow::keyBindingsForAction(const QString& name) const {
    const QString keys = text(QAccessible::Accelerator);
    return name == pressAction() && !keys.isEmpty() ? QStringList{keys} : QStringList{};
}

}  // namespace ferrowyn

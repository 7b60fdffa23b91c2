#include "ui/menu/accessible_status_menu.h"

#include <QAccessible>
#include <QAccessibleWidget>
#include <QStringList>
#include <map>

#include "core/texts.h"
#include "ui/common/accessibility.h"
#include "ui/common/display_text.h"
#include "ui/common/translation.h"
#include "ui/menu/menu_row_views.h"
#include "ui/menu/status_menu_popup.h"

namespace ferrowyn {

/// A row of the menu for assistive technology. The header is the button "Settings", because that is all it does. It
/// reads the popup each time it is asked. Main thread.
class AccessibleMenuRow final : public AccessibleLeaf {
public:
    AccessibleMenuRow(StatusMenuPopup& popup, int index) : popup_(popup), index_(index) {}

    [[nodiscard]] int index() const { return index_; }

    [[nodiscard]] bool isValid() const override;
    [[nodiscard]] QAccessibleInterface* parent() const override;
    [[nodiscard]] QString text(QAccessible::Text kind) const override;
    [[nodiscard]] QRect rect() const override;
    [[nodiscard]] QAccessible::Role role() const override;
    [[nodiscard]] QAccessible::State state() const override;
    void* interface_cast(QAccessible::InterfaceType type) override;

    [[nodiscard]] QStringList actionNames() const override;
    void doAction(const QString& name) override;
    [[nodiscard]] QStringList keyBindingsForAction(const QString& name) const override;

private:
    StatusMenuPopup& popup_;
    int index_;
};

namespace {

/// Whether the row shows a state with its check mark, which may be off.
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

/// The state of the program for the header, the tooltip for other rows.
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

namespace {

/// The menu for assistive technology. Its rows are made on request and live as long as the menu.
class AccessibleStatusMenu final : public QAccessibleWidget {
public:
    explicit AccessibleStatusMenu(StatusMenuPopup& popup)
        : QAccessibleWidget(&popup, QAccessible::PopupMenu), popup_(popup) {}
    ~AccessibleStatusMenu() override {
        for (const auto& [index, id] : rows_) {
            QAccessible::deleteAccessibleInterface(id);
        }
    }
    AccessibleStatusMenu(const AccessibleStatusMenu&) = delete;
    AccessibleStatusMenu& operator=(const AccessibleStatusMenu&) = delete;

    int childCount() const override { return popup_.geometryNow().rowCount(); }

    QAccessibleInterface* child(int index) const override {
        if (index < 0 || index >= childCount()) {
            return nullptr;
        }
        if (const auto found = rows_.find(index); found != rows_.end()) {
            return QAccessible::accessibleInterface(found->second);
        }
        auto* const made =
            new AccessibleMenuRow(popup_, index);  // NOLINT: Qt's registry owns it from the next line on.
        rows_.emplace(index, QAccessible::registerAccessibleInterface(made));
        return made;
    }

    int indexOfChild(const QAccessibleInterface* child) const override {
        const auto* const row = dynamic_cast<const AccessibleMenuRow*>(child);
        return row != nullptr && row->isValid() ? row->index() : -1;
    }

    QAccessibleInterface* childAt(int x, int y) const override {
        const QPoint local = popup_.mapFromGlobal(QPoint(x, y));
        const auto index = popup_.rowUnder(local);
        return index ? child(*index) : nullptr;
    }

    QAccessibleInterface* focusChild() const override {
        return popup_.selectedRow() ? child(*popup_.selectedRow()) : nullptr;
    }

private:
    StatusMenuPopup& popup_;
    mutable std::map<int, QAccessible::Id> rows_;
};

QAccessibleInterface* makeMenuInterface(const QString& className, QObject* object) {
    if (className != QLatin1String(StatusMenuPopup::staticMetaObject.className())) {
        return nullptr;
    }
    auto* const popup = qobject_cast<StatusMenuPopup*>(object);
    return popup == nullptr ? nullptr : new AccessibleStatusMenu(*popup);  // NOLINT: Qt takes ownership.
}

}  // namespace

void installStatusMenuAccessibility() {
    // Qt ignores a factory that is already installed.
    QAccessible::installFactory(makeMenuInterface);
}

void announceMenu(StatusMenuPopup& popup, bool isOpen) {
    QAccessibleEvent event(&popup, isOpen ? QAccessible::PopupMenuStart : QAccessible::PopupMenuEnd);
    QAccessible::updateAccessibility(&event);
}

void announceSelectedRow(StatusMenuPopup& popup, int index) {
    const QAccessibleInterface* const menu = QAccessible::queryAccessibleInterface(&popup);
    if (QAccessibleInterface* const row = menu != nullptr ? menu->child(index) : nullptr) {
        QAccessibleEvent focused(row, QAccessible::Focus);
        QAccessible::updateAccessibility(&focused);
    }
}

}  // namespace ferrowyn

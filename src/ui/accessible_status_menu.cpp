#include "ui/accessible_status_menu.h"

#include <QAccessible>
#include <QAccessibleWidget>
#include <map>

#include "ui/accessible_menu_row.h"
#include "ui/status_menu_popup.h"

namespace ferrowyn {

namespace {

/// A menu whose children are made when somebody asks for them and live as long as the menu.
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
    // Qt itself ignores a factory that is installed already.
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

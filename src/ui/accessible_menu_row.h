#pragma once

#include <QAccessible>

#include "ui/accessible_leaf.h"

namespace ferrowyn {

class StatusMenuPopup;

/// A row of the menu as assistive technology sees it: the header is the button "Settings", since that is all it does.
/// It is no object of its own: it reads the popup whenever it is asked. Main thread.
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

}  // namespace ferrowyn

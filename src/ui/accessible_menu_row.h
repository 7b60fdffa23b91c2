#pragma once

#include <QAccessible>

namespace ferrowyn {

class StatusMenuPopup;

/// A row of the menu as assistive technology sees it: the header is the button "Settings", since that is all it does.
/// It is no object of its own: it reads the popup whenever it is asked. Main thread.
class AccessibleMenuRow final : public QAccessibleInterface, public QAccessibleActionInterface {
public:
    AccessibleMenuRow(StatusMenuPopup& popup, int index) : popup_(popup), index_(index) {}

    [[nodiscard]] int index() const { return index_; }

    [[nodiscard]] bool isValid() const override;
    [[nodiscard]] QObject* object() const override { return nullptr; }
    [[nodiscard]] QAccessibleInterface* parent() const override;
    [[nodiscard]] QAccessibleInterface* child(int /*index*/) const override { return nullptr; }
    [[nodiscard]] QAccessibleInterface* childAt(int /*x*/, int /*y*/) const override { return nullptr; }
    [[nodiscard]] int childCount() const override { return 0; }
    [[nodiscard]] int indexOfChild(const QAccessibleInterface* /*child*/) const override { return -1; }
    [[nodiscard]] QString text(QAccessible::Text kind) const override;
    void setText(QAccessible::Text /*kind*/, const QString& /*text*/) override {}
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

#pragma once

#include <QAccessible>

class QWidget;

namespace ferrowyn {

/// The accessibility interface of something that is painted and is not a widget. It has no children. Main thread.
class AccessibleLeaf : public QAccessibleInterface, public QAccessibleActionInterface {
public:
    [[nodiscard]] QObject* object() const override { return nullptr; }
    [[nodiscard]] QAccessibleInterface* child(int /*index*/) const override { return nullptr; }
    [[nodiscard]] QAccessibleInterface* childAt(int /*x*/, int /*y*/) const override { return nullptr; }
    [[nodiscard]] int childCount() const override { return 0; }
    [[nodiscard]] int indexOfChild(const QAccessibleInterface* /*child*/) const override { return -1; }
    void setText(QAccessible::Text /*kind*/, const QString& /*text*/) override {}
};

/// Gives a plain widget a role for assistive technology. Call it before `setAccessibleName`, which already creates the
/// widget's interface. Main thread.
void setAccessibleRole(QWidget& widget, QAccessible::Role role);

}  // namespace ferrowyn

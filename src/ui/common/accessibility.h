#pragma once

#include <QAccessible>

class QWidget;

namespace ferrowyn {

/// What assistive technology sees of something that is drawn, but is no widget and has nothing inside. Main thread.
class AccessibleLeaf : public QAccessibleInterface, public QAccessibleActionInterface {
public:
    [[nodiscard]] QObject* object() const override { return nullptr; }
    [[nodiscard]] QAccessibleInterface* child(int /*index*/) const override { return nullptr; }
    [[nodiscard]] QAccessibleInterface* childAt(int /*x*/, int /*y*/) const override { return nullptr; }
    [[nodiscard]] int childCount() const override { return 0; }
    [[nodiscard]] int indexOfChild(const QAccessibleInterface* /*child*/) const override { return -1; }
    void setText(QAccessible::Text /*kind*/, const QString& /*text*/) override {}
};

/// Says what a widget without a role of its own is to assistive technology; its name is its accessible name. Main
/// thread, before anybody asks for its interface, which giving it a name does.
void setAccessibleRole(QWidget& widget, QAccessible::Role role);

}  // namespace ferrowyn

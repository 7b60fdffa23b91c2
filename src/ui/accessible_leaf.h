#pragma once

#include <QAccessible>

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

}  // namespace ferrowyn

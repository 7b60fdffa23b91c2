#include "ui/common/accessibility.h"

#include <QAccessibleWidget>
#include <QVariant>
#include <QWidget>

namespace ferrowyn {

namespace {

constexpr const char* roleProperty = "ferrowynAccessibleRole";

QAccessibleInterface* makeInterface(const QString& /*className*/, QObject* object) {
    if (object == nullptr || !object->isWidgetType()) {
        return nullptr;
    }
    const QVariant role = object->property(roleProperty);
    return role.isValid()
               ? new QAccessibleWidget(static_cast<QWidget*>(object), static_cast<QAccessible::Role>(role.toInt()))
               : nullptr;  // NOLINT: Qt takes ownership.
}

}  // namespace

void setAccessibleRole(QWidget& widget, QAccessible::Role role) {
    // Qt ignores a factory that is already installed.
    QAccessible::installFactory(makeInterface);
    widget.setProperty(roleProperty, static_cast<int>(role));
}

}  // namespace ferrowyn

#pragma once

#include <QAccessible>

class QWidget;

namespace ferrowyn {

/// Says what a widget without a role of its own is to assistive technology; its name is its accessible name. Main
/// thread, before anybody asks for its interface, which giving it a name does.
void setAccessibleRole(QWidget& widget, QAccessible::Role role);

}  // namespace ferrowyn

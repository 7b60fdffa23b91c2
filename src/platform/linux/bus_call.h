#pragma once

#include <QDBusMessage>
#include <QString>

namespace ferrowyn {

/// A call of the bus itself, which knows who is on it: `method` of org.freedesktop.DBus, with its one argument.
QDBusMessage callToBus(const QString& method, const QString& argument);

}  // namespace ferrowyn

#pragma once

#include <QDBusMessage>
#include <QString>
#include <QVariantList>

namespace ferrowyn {

QDBusMessage methodCall(const QString& service, const QString& path, const QString& interface, const QString& method,
                        const QVariantList& arguments);

/// A call of the bus itself, which knows who is on it: `method` of org.freedesktop.DBus, with its one argument.
QDBusMessage callToBus(const QString& method, const QString& argument);

}  // namespace ferrowyn

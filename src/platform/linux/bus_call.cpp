#include "platform/linux/bus_call.h"

namespace ferrowyn {

QDBusMessage methodCall(const QString& service, const QString& path, const QString& interface, const QString& method,
                        const QVariantList& arguments) {
    auto message = QDBusMessage::createMethodCall(service, path, interface, method);
    message.setArguments(arguments);
    return message;
}

QDBusMessage callToBus(const QString& method, const QString& argument) {
    const auto bus = QStringLiteral("org.freedesktop.DBus");
    return methodCall(bus, QStringLiteral("/org/freedesktop/DBus"), bus, method, {argument});
}

}  // namespace ferrowyn

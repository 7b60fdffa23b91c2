#include "platform/linux/bus_call.h"

namespace ferrowyn {

QDBusMessage callToBus(const QString& method, const QString& argument) {
    const auto bus = QStringLiteral("org.freedesktop.DBus");
    auto message = QDBusMessage::createMethodCall(bus, QStringLiteral("/org/freedesktop/DBus"), bus, method);
    message.setArguments({argument});
    return message;
}

}  // namespace ferrowyn

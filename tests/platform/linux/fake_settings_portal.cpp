#include "tests/platform/linux/fake_settings_portal.h"

#include <gtest/gtest.h>

#include <QDBusArgument>
#include <QDBusMetaType>
#include <QDBusVariant>
#include <QMap>

namespace ferrowyn::test {

struct PortalColor {
    double red = 0;
    double green = 0;
    double blue = 0;
};

QDBusArgument& operator<<(QDBusArgument& argument, const PortalColor& color) {
    argument.beginStructure();
    argument << color.red << color.green << color.blue;
    argument.endStructure();
    return argument;
}

const QDBusArgument& operator>>(const QDBusArgument& argument, PortalColor& color) {
    argument.beginStructure();
    argument >> color.red >> color.green >> color.blue;
    argument.endStructure();
    return argument;
}

using PortalSettings = QMap<QString, QVariantMap>;

}  // namespace ferrowyn::test

Q_DECLARE_METATYPE(ferrowyn::test::PortalColor)
Q_DECLARE_METATYPE(ferrowyn::test::PortalSettings)

namespace ferrowyn::test {

namespace {

const QString path = QStringLiteral("/org/freedesktop/portal/desktop");

}  // namespace

FakeSettingsPortal::FakeSettingsPortal(const std::string& busAddress)
    : connectionName_(QStringLiteral("portal-%1").arg(reinterpret_cast<quintptr>(this))),
      bus_(QDBusConnection::connectToBus(QString::fromStdString(busAddress), connectionName_)) {
    qDBusRegisterMetaType<PortalColor>();
    qDBusRegisterMetaType<PortalSettings>();
    EXPECT_TRUE(bus_.registerVirtualObject(path, this));
    EXPECT_TRUE(bus_.registerService("org.freedesktop.portal.Desktop"));
}

FakeSettingsPortal::~FakeSettingsPortal() {
    QDBusConnection::disconnectFromBus(connectionName_);
}

QVariant FakeSettingsPortal::color(double red, double green, double blue) {
    return QVariant::fromValue(PortalColor{red, green, blue});
}

bool FakeSettingsPortal::handleMessage(const QDBusMessage& message, const QDBusConnection& bus) {
    if (message.member() != "ReadAll") {
        return false;
    }
    ++questions;
    const PortalSettings settings{{QStringLiteral("org.freedesktop.appearance"), values}};
    return bus.send(message.createReply(QVariant::fromValue(settings)));
}

void FakeSettingsPortal::change(const QString& key, const QVariant& value, const QString& group) {
    values[key] = value;
    auto signal = QDBusMessage::createSignal(path, "org.freedesktop.portal.Settings", "SettingChanged");
    signal.setArguments({group, key, QVariant::fromValue(QDBusVariant(value))});
    EXPECT_TRUE(bus_.send(signal));
}

}  // namespace ferrowyn::test

#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVirtualObject>
#include <QString>
#include <QVariant>
#include <QVariantMap>
#include <string>

namespace ferrowyn::test {

/// The settings portal of a desktop, on the bus as long as it lives. It answers while the loop of the test runs.
class FakeSettingsPortal final : public QDBusVirtualObject {
public:
    explicit FakeSettingsPortal(const std::string& busAddress);
    ~FakeSettingsPortal() override;

    /// As the portal sends one.
    [[nodiscard]] static QVariant color(double red, double green, double blue);

    [[nodiscard]] QString introspect(const QString& /*path*/) const override { return {}; }
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& bus) override;
    /// Tells those who listen, too.
    void change(const QString& key, const QVariant& value,
                const QString& group = QStringLiteral("org.freedesktop.appearance"));

    /// Of the appearance.
    QVariantMap values;
    int questions = 0;

private:
    QString connectionName_;
    QDBusConnection bus_;
};

}  // namespace ferrowyn::test

#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QVariantMap>
#include <string>
#include <vector>

namespace ferrowyn::test {

/// The desktop's side of status notifiers, a watcher and a host in one, with its own connection. It is on the bus as
/// long as it lives.
class FakeStatusNotifierWatcher final : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.kde.StatusNotifierWatcher")
    Q_PROPERTY(bool IsStatusNotifierHostRegistered READ hasHost)

public:
    FakeStatusNotifierWatcher(const QString& busAddress, bool hasHost);
    ~FakeStatusNotifierWatcher() override;

    [[nodiscard]] bool hasHost() const { return hasHost_; }
    void setHasHost(bool hasHost);
    /// The bus names of the items that were offered.
    [[nodiscard]] const QStringList& items() const { return items_; }
    /// Of the first item.
    [[nodiscard]] QVariantMap propertiesOfItem() const;
    void callItem(const QString& method, const QVariantList& arguments) const;
    void listenToItem();
    /// The item's signals, by name.
    [[nodiscard]] const std::vector<std::string>& heard() const { return heard_; }

public slots:
    void RegisterStatusNotifierItem(const QString& service) { items_.append(service); }
    void onSignal(const QDBusMessage& message) { heard_.push_back(message.member().toStdString()); }

signals:
    void StatusNotifierHostRegistered();
    void StatusNotifierHostUnregistered();

private:
    bool hasHost_;
    QString connectionName_;
    QDBusConnection bus_;
    QStringList items_;
    std::vector<std::string> heard_;
};

}  // namespace ferrowyn::test

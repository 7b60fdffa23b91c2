#pragma once

#include <QDBusConnection>
#include <QDBusContext>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QVariantList>
#include <QVariantMap>
#include <memory>
#include <string>
#include <vector>

#include "platform/linux/application_service.h"

namespace ferrowyn {

class BusLink;

/// The object that the bus calls. Lives on a thread of its own, on which it also tells.
class ApplicationServiceListener final : public QObject, protected QDBusContext {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Application")

public:
    ApplicationServiceListener(std::string busAddress, std::vector<std::string> actions,
                               ApplicationService::Handlers handlers);
    ~ApplicationServiceListener() override;

    /// Connects, and again after the bus was restarted; slow where a bus is. On the listener's thread.
    void start();

    [[nodiscard]] static QString serviceName();
    /// The service's name as a path, as desktops derive it.
    [[nodiscard]] static QString objectPath();

public slots:
    // Named as on the bus. What launchers say of the screen and the time of the click has no use here yet.
    // NOLINTBEGIN(readability-identifier-naming)
    Q_SCRIPTABLE void Activate(const QVariantMap& platformData);
    /// The program opens no documents: like launchers without any, it shows itself.
    Q_SCRIPTABLE void Open(const QStringList& uris, const QVariantMap& platformData);
    Q_SCRIPTABLE void ActivateAction(const QString& action, const QVariantList& parameters,
                                     const QVariantMap& platformData);
    // NOLINTEND(readability-identifier-naming)

private:
    void appearOn(QDBusConnection& bus);

    std::string busAddress_;
    std::vector<std::string> actions_;
    ApplicationService::Handlers handlers_;
    std::unique_ptr<BusLink> link_;
};

}  // namespace ferrowyn

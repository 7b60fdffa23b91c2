#include "platform/linux/application_service_listener.h"

#include <QDBusError>
#include <QLatin1String>
#include <algorithm>
#include <utility>

#include "platform/linux/application_id.h"
#include "platform/linux/bus_link.h"

namespace ferrowyn {

ApplicationServiceListener::ApplicationServiceListener(std::string busAddress, std::vector<std::string> actions,
                                                       ApplicationService::Handlers handlers)
    : busAddress_(std::move(busAddress)), actions_(std::move(actions)), handlers_(std::move(handlers)) {}

ApplicationServiceListener::~ApplicationServiceListener() = default;

QString ApplicationServiceListener::serviceName() {
    return QLatin1String(applicationId.data(), static_cast<int>(applicationId.size()));
}

QString ApplicationServiceListener::objectPath() {
    return QLatin1Char('/') + serviceName().replace(QLatin1Char('.'), QLatin1Char('/'));
}

void ApplicationServiceListener::start() {
    link_ = std::make_unique<BusLink>(
        busAddress_, QStringLiteral("application"),
        BusLink::Handlers{.connected = [this](QDBusConnection& bus) { appearOn(bus); }, .lost = [] {}});
    link_->start();
}

void ApplicationServiceListener::appearOn(QDBusConnection& bus) {
    // The object first: from the moment it has the name, the bus delivers what was asked of the name.
    if (bus.registerObject(objectPath(), this, QDBusConnection::ExportScriptableSlots)) {
        bus.registerService(serviceName());
    }
}

void ApplicationServiceListener::Activate(const QVariantMap& /*platformData*/) {
    handlers_.activate();
}

void ApplicationServiceListener::Open(const QStringList& /*uris*/, const QVariantMap& /*platformData*/) {
    handlers_.activate();
}

void ApplicationServiceListener::ActivateAction(const QString& action, const QVariantList& /*parameters*/,
                                                const QVariantMap& /*platformData*/) {
    const auto name = action.toStdString();
    if (std::ranges::find(actions_, name) == actions_.end()) {
        sendErrorReply(QDBusError::InvalidArgs, QStringLiteral("There is no action \"%1\".").arg(action));
        return;
    }
    handlers_.activateAction(name);
}

}  // namespace ferrowyn

#include "platform/linux/application_service.h"

#include <QDBusConnection>
#include <QDBusContext>
#include <QDBusError>
#include <QDBusMessage>
#include <QLatin1String>
#include <QObject>
#include <QString>
#include <QStringList>
#include <QVariant>
#include <QVariantList>
#include <QVariantMap>
#include <algorithm>
#include <utility>

#include "platform/linux/bus.h"
#include "platform/linux/desktop_entry.h"
#include "platform/main_loop.h"

namespace ferrowyn {

/// The object that is called over the bus; calls its handlers on its thread. Owned by the `BusThread` that it lives on.
class ApplicationServiceListener final : public QObject, protected QDBusContext {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Application")

public:
    ApplicationServiceListener(std::string busAddress, std::vector<std::string> actions,
                               ApplicationService::Handlers handlers);
    ~ApplicationServiceListener() override;

    /// Connects, and connects again after the bus was restarted. Blocks until the bus answers.
    void start();

    [[nodiscard]] static QString serviceName();
    /// The path that desktops derive from the service's name.
    [[nodiscard]] static QString objectPath();

public slots:
    // Named as on the bus. The screen and the time of the click, which launchers send along, are not used.
    // NOLINTBEGIN(readability-identifier-naming)
    Q_SCRIPTABLE void Activate(const QVariantMap& platformData);
    /// The program opens no documents, so this does the same as `Activate`.
    Q_SCRIPTABLE void Open(const QStringList& uris, const QVariantMap& platformData);
    Q_SCRIPTABLE void ActivateAction(const QString& action, const QVariantList& parameters,
                                     const QVariantMap& platformData);
    // NOLINTEND(readability-identifier-naming)

private:
    void registerOn(QDBusConnection& bus);

    std::string busAddress_;
    std::vector<std::string> actions_;
    ApplicationService::Handlers handlers_;
    std::unique_ptr<BusLink> link_;
};

namespace {

/// In milliseconds.
constexpr int activationTimeout = 5000;

}  // namespace

ApplicationService::ApplicationService(MainLoop& mainLoop, const std::optional<std::string>& busAddress,
                                       std::vector<std::string> actions, Handlers handlers)
    : handlers_(std::move(handlers)) {
    if (!busAddress) {
        return;
    }
    const auto activate = life_.guard([this] { handlers_.activate(); });
    const auto activateAction = life_.guard([this](const std::string& action) { handlers_.activateAction(action); });
    auto* const listener =
        new ApplicationServiceListener(*busAddress, std::move(actions),
                                       {.activate = [&mainLoop, activate] { mainLoop.post(activate); },
                                        .activateAction =
                                            [&mainLoop, activateAction](const std::string& action) {
                                                mainLoop.post([activateAction, action] { activateAction(action); });
                                            }});
    thread_ = std::make_unique<BusThread>("ferrowyn-bus", listener, [listener] { listener->start(); });
}

ApplicationService::~ApplicationService() = default;

bool activateActionOfRunningApplication(const std::string& busAddress, const std::string& action) {
    const QString connectionName = QStringLiteral("ferrowyn-request");
    bool wasDone = false;
    {
        const auto bus = QDBusConnection::connectToBus(withoutBusIdentity(busAddress), connectionName);
        const auto call = methodCall(ApplicationServiceListener::serviceName(),
                                     ApplicationServiceListener::objectPath(), "org.freedesktop.Application",
                                     "ActivateAction", {QString::fromStdString(action), QVariantList(), QVariantMap()});
        wasDone =
            bus.isConnected() && bus.call(call, QDBus::Block, activationTimeout).type() == QDBusMessage::ReplyMessage;
    }
    QDBusConnection::disconnectFromBus(connectionName);
    return wasDone;
}

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
        BusLink::Handlers{.connected = [this](QDBusConnection& bus) { registerOn(bus); }, .lost = [] {}});
    link_->start();
}

void ApplicationServiceListener::registerOn(QDBusConnection& bus) {
    // The object first: as soon as the name is registered, the bus delivers calls that wait for it.
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

// The meta-objects of the classes above, generated by moc.
#include "application_service.moc"

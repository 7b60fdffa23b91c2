#include "platform/linux/application_service.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QVariant>
#include <utility>

#include "platform/linux/application_service_listener.h"
#include "platform/linux/bus_link.h"
#include "platform/linux/bus_thread.h"
#include "platform/main_loop.h"

namespace ferrowyn {

namespace {

/// Milliseconds.
constexpr int patienceWithProgram = 5000;

}  // namespace

ApplicationService::ApplicationService(MainLoop& mainLoop, const std::optional<std::string>& busAddress,
                                       std::vector<std::string> actions, Handlers handlers)
    : handlers_(std::move(handlers)) {
    if (!busAddress) {
        return;
    }
    // What the listener posts may arrive after this object is gone.
    const auto onMainLoop = [&mainLoop, alive = std::weak_ptr(isAlive_)](std::function<void()> task) {
        mainLoop.post([alive, task = std::move(task)] {
            if (!alive.expired()) {
                task();
            }
        });
    };
    auto* const listener = new ApplicationServiceListener(
        *busAddress, std::move(actions),
        {.activate = [this, onMainLoop] { onMainLoop([this] { handlers_.activate(); }); },
         .activateAction =
             [this, onMainLoop](const std::string& action) {
                 onMainLoop([this, action] { handlers_.activateAction(action); });
             }});
    thread_ = std::make_unique<BusThread>("ferrowyn-bus", listener, [listener] { listener->start(); });
}

ApplicationService::~ApplicationService() = default;

bool activateActionOfRunningApplication(const std::string& busAddress, const std::string& action) {
    const QString connectionName = QStringLiteral("ferrowyn-request");
    bool wasDone = false;
    {
        const auto bus = QDBusConnection::connectToBus(withoutBusIdentity(busAddress), connectionName);
        auto message = QDBusMessage::createMethodCall(ApplicationServiceListener::serviceName(),
                                                      ApplicationServiceListener::objectPath(),
                                                      "org.freedesktop.Application", "ActivateAction");
        message.setArguments({QString::fromStdString(action), QVariantList(), QVariantMap()});
        message.setAutoStartService(false);
        wasDone = bus.isConnected() &&
                  bus.call(message, QDBus::Block, patienceWithProgram).type() == QDBusMessage::ReplyMessage;
    }
    QDBusConnection::disconnectFromBus(connectionName);
    return wasDone;
}

}  // namespace ferrowyn

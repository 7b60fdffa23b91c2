#include "tests/x11/windows/application_fixture.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>

namespace ferrowyn::x11test {

namespace {

constexpr const char* connectionName = "application-test";
constexpr const char* serviceName = "com.larkmoor.ferrowyn";
constexpr const char* objectPath = "/com/larkmoor/ferrowyn";
constexpr int answerPatience = 30000;

}  // namespace

ApplicationFixture::ApplicationFixture() : SwitchingDesk("openbox") {
    openActive({.title = "Letter"});
    openActive({.title = "Report"});
}

ApplicationFixture::~ApplicationFixture() {
    QDBusConnection::disconnectFromBus(connectionName);
}

void ApplicationFixture::startBus() {
    server.home().write(".local/share/dbus-1/services/com.larkmoor.ferrowyn.service",
                        std::string("[D-BUS Service]\nName=com.larkmoor.ferrowyn\nExec=" FERROWYN_PROGRAM
                                    " --dbus-service --log-level=debug\n"));
    bus = std::make_unique<PrivateBus>(server);
    const auto connection = QDBusConnection::connectToBus(QString::fromStdString(bus->address()), connectionName);
    ASSERT_TRUE(connection.isConnected());
    programOptions.environment["DBUS_SESSION_BUS_ADDRESS"] = bus->address();
}

void ApplicationFixture::startProgram(const std::vector<std::string>& arguments) {
    programOptions.arguments = FerrowynProgram::Options{}.arguments;
    programOptions.arguments.insert(programOptions.arguments.end(), arguments.begin(), arguments.end());
    SwitchingDesk::startProgram();
    ASSERT_FALSE(HasFatalFailure());
    ASSERT_TRUE(program->process().waitForOutput("Ferrowyn is running"));
    if (bus) {
        ASSERT_TRUE(poll([&] { return isOnBus(); })) << "waited for the program's name on the bus";
    }
}

QDBusMessage ApplicationFixture::call(const QString& method, const QVariantList& arguments) const {
    auto message = QDBusMessage::createMethodCall(serviceName, objectPath, "org.freedesktop.Application", method);
    message.setArguments(arguments);
    return QDBusConnection(connectionName).call(message, QDBus::Block, answerPatience);
}

QDBusMessage ApplicationFixture::activateAction(const QString& action) const {
    return call("ActivateAction", {action, QVariantList(), QVariantMap()});
}

QDBusMessage ApplicationFixture::activate() const {
    return call("Activate", {QVariantMap()});
}

bool ApplicationFixture::isOnBus() const {
    return QDBusConnection(connectionName).interface()->isServiceRegistered(serviceName).value();
}

bool ApplicationFixture::poll(const std::function<bool()>& condition) {
    const Deadline deadline(patience);
    while (!condition()) {
        if (deadline.hasPassed()) {
            return false;
        }
        static_cast<void>(desktop.waitUntil([] { return false; }, milliseconds{10}));
    }
    return true;
}

void ApplicationFixture::waitForSwitcher() {
    ASSERT_TRUE(desktop.waitForPanel(true)) << "waited for the panel";
    ASSERT_TRUE(poll([&] { return !desktop.keyboardIsFree(); })) << "waited for the panel to have the keyboard";
}

void ApplicationFixture::expectEnd() {
    EXPECT_EQ(program->process().waitForExit(), 0) << program->process().output();
}

void ApplicationFixture::expectKeyboardIsBack() {
    EXPECT_FALSE(desktop.visiblePanel());
    input.releaseAll();
    expectManagerSwitches();
}

}  // namespace ferrowyn::x11test

#include "platform/linux/application_service.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QEventLoop>
#include <QProcess>
#include <QTimer>
#include <chrono>

#include "platform/qt/qt_main_loop.h"
#include "tests/platform/linux/restartable_bus.h"

namespace ferrowyn {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* serviceName = "com.larkmoor.ferrowyn";
constexpr const char* objectPath = "/com/larkmoor/ferrowyn";

/// A private session bus.
class ApplicationServiceTest : public testing::Test {
protected:
    void SetUp() override {
        daemon.start("dbus-daemon", {"--session", "--nofork", "--print-address"});
        ASSERT_TRUE(daemon.waitForReadyRead(20000));
        address = daemon.readLine().trimmed().toStdString();
        bus.emplace(QDBusConnection::connectToBus(QString::fromStdString(address), "application-service-test"));
        ASSERT_TRUE(bus->isConnected());
    }
    void TearDown() override {
        bus.reset();
        QDBusConnection::disconnectFromBus("application-service-test");
        daemon.terminate();
        daemon.waitForFinished();
    }

    [[nodiscard]] std::unique_ptr<ApplicationService> makeService(const std::optional<std::string>& busAddress) {
        return std::make_unique<ApplicationService>(
            mainLoop, busAddress, std::vector<std::string>{"show", "quit"},
            ApplicationService::Handlers{.activate = [this] { told.emplace_back("activate"); },
                                         .activateAction = [this](const auto& action) { told.push_back(action); }});
    }
    /// With its name on the bus.
    [[nodiscard]] std::unique_ptr<ApplicationService> startService() {
        auto service = makeService(address);
        EXPECT_TRUE(waitUntil([this] { return bus->interface()->isServiceRegistered(serviceName).value(); }));
        return service;
    }
    QDBusMessage call(const QString& method, const QVariantList& arguments) {
        auto message = QDBusMessage::createMethodCall(serviceName, objectPath, "org.freedesktop.Application", method);
        message.setArguments(arguments);
        return bus->call(message);
    }
    QDBusMessage activate(const QString& action) {
        return call("ActivateAction", {action, QVariantList(), QVariantMap()});
    }
    /// Runs the loop until the condition holds; false when it never does.
    static bool waitUntil(const std::function<bool()>& condition) {
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(20);
        QTimer wake;
        wake.start(std::chrono::milliseconds(50));
        while (!condition()) {
            if (std::chrono::steady_clock::now() > deadline) {
                return false;
            }
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        }
        return true;
    }

    QProcess daemon;
    std::string address;
    std::optional<QDBusConnection> bus;
    std::vector<std::string> told;
    QtMainLoop mainLoop;
};

TEST_F(ApplicationServiceTest, TellsWhatTheDesktopAsksInOrder) {
    const auto service = startService();
    EXPECT_EQ(activate("show").type(), QDBusMessage::ReplyMessage);
    EXPECT_EQ(call("Activate", {QVariantMap{{"desktop-startup-id", "id"}}}).type(), QDBusMessage::ReplyMessage);
    EXPECT_EQ(call("Open", {QStringList{"file:///a"}, QVariantMap()}).type(), QDBusMessage::ReplyMessage);
    EXPECT_EQ(activate("quit").type(), QDBusMessage::ReplyMessage);
    ASSERT_TRUE(waitUntil([this] { return told.size() >= 4; }));
    EXPECT_THAT(told, ElementsAre("show", "activate", "activate", "quit"));
}

TEST_F(ApplicationServiceTest, RefusesAnActionThatItDoesNotOffer) {
    const auto service = startService();
    const auto reply = activate("explode");
    EXPECT_EQ(reply.type(), QDBusMessage::ErrorMessage);
    EXPECT_EQ(reply.errorName(), "org.freedesktop.DBus.Error.InvalidArgs");
    EXPECT_EQ(activate("show").type(), QDBusMessage::ReplyMessage);
    ASSERT_TRUE(waitUntil([this] { return !told.empty(); }));
    EXPECT_THAT(told, ElementsAre("show"));
}

TEST_F(ApplicationServiceTest, IsAskedByALaterStartOfTheProgram) {
    EXPECT_FALSE(activateActionOfRunningApplication(address, "show")) << "none runs";
    const auto service = startService();
    EXPECT_TRUE(activateActionOfRunningApplication(address, "show"));
    EXPECT_FALSE(activateActionOfRunningApplication(address, "explode"));
    ASSERT_TRUE(waitUntil([this] { return !told.empty(); }));
    EXPECT_THAT(told, ElementsAre("show"));
    EXPECT_FALSE(activateActionOfRunningApplication("unix:path=/nonexistent", "show"));
}

TEST_F(ApplicationServiceTest, LeavesTheNameToWhoHasIt) {
    const auto first = startService();
    auto second = makeService(address);
    second.reset();
    EXPECT_TRUE(bus->interface()->isServiceRegistered(serviceName).value());
    EXPECT_EQ(activate("show").type(), QDBusMessage::ReplyMessage);
}

TEST_F(ApplicationServiceTest, GivesTheNameBackAndTellsNothingAfterItsEnd) {
    auto service = startService();
    EXPECT_EQ(activate("show").type(), QDBusMessage::ReplyMessage);
    // What it was asked waits on the main loop.
    service.reset();
    QCoreApplication::processEvents();
    EXPECT_FALSE(bus->interface()->isServiceRegistered(serviceName).value());
    EXPECT_THAT(told, IsEmpty());
}

TEST_F(ApplicationServiceTest, IsReachedAgainOnceTheBusIsBack) {
    test::RestartableBus restarted;
    const auto asInTheEnvironment = restarted.address();
    const auto service = makeService(asInTheEnvironment);
    for (int round = 0; round < 3; ++round) {
        told.clear();
        EXPECT_TRUE(waitUntil([&] { return activateActionOfRunningApplication(asInTheEnvironment, "show"); })) << round;
        EXPECT_TRUE(waitUntil([this] { return !told.empty(); }));
        EXPECT_THAT(told, ElementsAre("show")) << round;
        restarted.end();
        restarted.start();
    }
}

TEST_F(ApplicationServiceTest, DoesWithoutABus) {
    const auto none = makeService(std::nullopt);
    const auto missing = makeService("unix:path=/nonexistent");
    QCoreApplication::processEvents();
    EXPECT_THAT(told, IsEmpty());
}

}  // namespace
}  // namespace ferrowyn

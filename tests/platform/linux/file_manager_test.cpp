#include "platform/linux/desktop_programs.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVirtualObject>
#include <QEventLoop>
#include <QProcess>
#include <QTimer>
#include <chrono>

namespace ferrowyn {
namespace {

using testing::ElementsAre;

/// Shows whatever it is asked to show, or refuses.
class FakeFileManager final : public QDBusVirtualObject {
public:
    [[nodiscard]] QString introspect(const QString& /*path*/) const override { return {}; }
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& bus) override {
        requests.push_back(message.interface() + "." + message.member() + " " +
                           message.arguments().value(0).toStringList().join(","));
        return bus.send(refuses ? message.createErrorReply(QDBusError::Failed, "not now") : message.createReply());
    }
    std::vector<QString> requests;
    bool refuses = false;
};

class FileManagerTest : public testing::Test {
protected:
    void SetUp() override {
        daemon.start("dbus-daemon", {"--session", "--nofork", "--print-address"});
        ASSERT_TRUE(daemon.waitForReadyRead(20000));
        address = QString::fromUtf8(daemon.readLine().trimmed());
    }
    void TearDown() override {
        QDBusConnection::disconnectFromBus("manager");
        QDBusConnection::disconnectFromBus("client");
        daemon.terminate();
        daemon.waitForFinished();
    }
    void startFileManager() {
        auto bus = QDBusConnection::connectToBus(address, "manager");
        ASSERT_TRUE(bus.registerVirtualObject("/org/freedesktop/FileManager1", &manager));
        ASSERT_TRUE(bus.registerService("org.freedesktop.FileManager1"));
    }
    void reveal(const QDBusConnection& bus, const char* file) {
        revealInFileManager(bus, file, [this](const QString& folder) { opened.push_back(folder); });
    }
    static bool waitUntil(const std::function<bool()>& condition) {
        QTimer wake;
        wake.start(std::chrono::milliseconds(200));
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(20);
        while (!condition() && std::chrono::steady_clock::now() < deadline) {
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        }
        return condition();
    }

    QProcess daemon;
    QString address;
    FakeFileManager manager;
    std::vector<QString> opened;
};

TEST_F(FileManagerTest, AsksTheFileManagerToShowTheFile) {
    startFileManager();
    const auto bus = QDBusConnection::connectToBus(address, "client");
    reveal(bus, "/opt/My Programs/100%/ferrowyn");
    ASSERT_TRUE(waitUntil([&] { return !manager.requests.empty(); }));
    EXPECT_THAT(manager.requests,
                ElementsAre("org.freedesktop.FileManager1.ShowItems file:///opt/My%20Programs/100%25/ferrowyn"));
    // A refusal that is answered later would open the folder before this.
    manager.refuses = true;
    reveal(bus, "/usr/bin/ferrowyn");
    ASSERT_TRUE(waitUntil([&] { return !opened.empty(); }));
    EXPECT_THAT(opened, ElementsAre("file:///usr/bin"));
}

TEST_F(FileManagerTest, OpensTheFolderWhereNoFileManagerTakesRequests) {
    reveal(QDBusConnection::connectToBus(address, "client"), "/opt/My Programs/ferrowyn");
    EXPECT_TRUE(opened.empty()) << "before the call returned";
    ASSERT_TRUE(waitUntil([&] { return !opened.empty(); }));
    EXPECT_THAT(opened, ElementsAre("file:///opt/My%20Programs"));
}

TEST_F(FileManagerTest, OpensTheFolderWithoutABus) {
    reveal(QDBusConnection::connectToBus("unix:path=/nonexistent/bus", "client"), "/usr/bin/ferrowyn");
    ASSERT_TRUE(waitUntil([&] { return !opened.empty(); }));
    EXPECT_THAT(opened, ElementsAre("file:///usr/bin"));
}

}  // namespace
}  // namespace ferrowyn

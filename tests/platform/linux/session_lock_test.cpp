#include "platform/linux/session_lock.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusVariant>
#include <QDBusVirtualObject>
#include <QEventLoop>
#include <QProcess>
#include <QTimer>
#include <chrono>
#include <semaphore>

#include "platform/qt/qt_main_loop.h"
#include "tests/platform/linux/restartable_bus.h"

namespace ferrowyn {
namespace {

using testing::ElementsAre;

constexpr const char* sessionPath = "/org/freedesktop/login1/session/_31";
constexpr const char* sessionInterface = "org.freedesktop.login1.Session";

/// A login manager with one session, whatever it is asked for.
class FakeLoginManager final : public QDBusVirtualObject {
public:
    explicit FakeLoginManager(bool isLocked) : isLocked_(isLocked) {}
    [[nodiscard]] QString introspect(const QString& /*path*/) const override { return {}; }
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& bus) override {
        if (message.member().startsWith("GetSession")) {
            return bus.send(message.createReply(QVariant::fromValue(QDBusObjectPath(sessionPath))));
        }
        if (message.member() == "Get") {
            ++stateRequestCount;
            return bus.send(message.createReply(QVariant::fromValue(QDBusVariant(isLocked_))));
        }
        return false;
    }
    int stateRequestCount = 0;

private:
    bool isLocked_;
};

/// A private bus, which stands for the system's and for the session's.
class SessionLockTest : public testing::Test {
protected:
    void SetUp() override {
        daemon.start("dbus-daemon", {"--session", "--nofork", "--print-address"});
        ASSERT_TRUE(daemon.waitForReadyRead(20000));
        address = daemon.readLine().trimmed().toStdString();
    }
    void TearDown() override {
        for (const auto& name : connectionNames) {
            QDBusConnection::disconnectFromBus(name);
        }
        daemon.terminate();
        daemon.waitForFinished();
    }

    QDBusConnection connect(const QString& name, const QString& service) {
        auto connection = QDBusConnection::connectToBus(QString::fromStdString(address), name);
        connectionNames.push_back(name);
        EXPECT_TRUE(connection.registerService(service));
        return connection;
    }
    [[nodiscard]] SessionLock::Buses buses() const { return {address, address}; }

    /// Runs the loop until the condition holds; false when it never does.
    static bool waitUntil(const std::function<bool()>& condition) {
        QEventLoop loop;
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(20);
        QTimer wake;
        wake.start(std::chrono::milliseconds(200));
        while (!condition()) {
            if (std::chrono::steady_clock::now() > deadline) {
                return false;
            }
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        }
        return true;
    }
    static QDBusMessage lockedHint(bool isLocked) {
        auto message = QDBusMessage::createSignal(sessionPath, "org.freedesktop.DBus.Properties", "PropertiesChanged");
        message.setArguments({sessionInterface, QVariantMap{{"LockedHint", isLocked}}, QStringList()});
        return message;
    }
    static QDBusMessage screenSaver(const QString& interface, bool isActive) {
        auto message = QDBusMessage::createSignal("/anywhere", interface, "ActiveChanged");
        message.setArguments({isActive});
        return message;
    }
    /// The screen saver says again that it is active: its first signals may come before the listener is there.
    static bool waitUntilItLocks(const QDBusConnection& saver, const QString& interface, const SessionLock& lock) {
        return waitUntil([&] {
            saver.send(screenSaver(interface, true));
            return lock.isLocked();
        });
    }

    QProcess daemon;
    std::string address;
    std::vector<QString> connectionNames;
    QtMainLoop mainLoop;
};

TEST_F(SessionLockTest, FollowsTheLoginManager) {
    auto login = connect("login", "org.freedesktop.login1");
    FakeLoginManager manager(false);
    login.registerVirtualObject("/org/freedesktop/login1", &manager, QDBusConnection::SubPath);
    const SessionLock lock(mainLoop, buses());
    std::vector<bool> told;
    const auto subscription = lock.observe([&](bool isLocked) { told.push_back(isLocked); });
    ASSERT_TRUE(waitUntil([&] { return manager.stateRequestCount == 1; }));
    EXPECT_FALSE(lock.isLocked());

    login.send(QDBusMessage::createSignal(sessionPath, sessionInterface, "Lock"));
    ASSERT_TRUE(waitUntil([&] { return lock.isLocked(); }));
    login.send(QDBusMessage::createSignal(sessionPath, sessionInterface, "Unlock"));
    ASSERT_TRUE(waitUntil([&] { return !lock.isLocked(); }));
    login.send(lockedHint(true));
    ASSERT_TRUE(waitUntil([&] { return lock.isLocked(); }));
    login.send(lockedHint(false));
    ASSERT_TRUE(waitUntil([&] { return !lock.isLocked(); }));
    EXPECT_THAT(told, ElementsAre(true, false, true, false));
}

TEST_F(SessionLockTest, KnowsASessionThatIsLockedAtTheStart) {
    auto login = connect("locked-login", "org.freedesktop.login1");
    FakeLoginManager manager(true);
    login.registerVirtualObject("/org/freedesktop/login1", &manager, QDBusConnection::SubPath);
    const SessionLock lock(mainLoop, buses());
    EXPECT_TRUE(waitUntil([&] { return lock.isLocked(); }));
}

TEST_F(SessionLockTest, AScreenSaverThatWentWithItsBusLocksNoLongerAndOneOnTheNextBusDoes) {
    test::RestartableBus restarted;
    const SessionLock lock(mainLoop, {std::nullopt, restarted.address()});
    const QString interface = "org.freedesktop.ScreenSaver";
    for (int round = 0; round < 2; ++round) {
        const auto name = QStringLiteral("saver-on-bus-%1").arg(round);
        {
            auto saver = QDBusConnection::connectToBus(QString::fromStdString(restarted.address()), name);
            ASSERT_TRUE(saver.registerService(interface));
            EXPECT_TRUE(waitUntilItLocks(saver, interface, lock)) << round;
        }
        restarted.end();
        QDBusConnection::disconnectFromBus(name);
        EXPECT_TRUE(waitUntil([&] { return !lock.isLocked(); })) << round;
        restarted.start();
    }
}

TEST_F(SessionLockTest, FollowsEveryKindOfScreenSaver) {
    auto login = connect("quiet-login", "org.freedesktop.login1");
    FakeLoginManager manager(false);
    login.registerVirtualObject("/org/freedesktop/login1", &manager, QDBusConnection::SubPath);
    const SessionLock lock(mainLoop, buses());
    for (const char* interface : {"org.freedesktop.ScreenSaver", "org.gnome.ScreenSaver", "org.cinnamon.ScreenSaver",
                                  "org.mate.ScreenSaver", "org.xfce.ScreenSaver"}) {
        auto saver = connect(interface, interface);
        ASSERT_TRUE(waitUntilItLocks(saver, interface, lock)) << interface;
        saver.send(screenSaver(interface, false));
        ASSERT_TRUE(waitUntil([&] { return !lock.isLocked(); })) << interface;
    }
}

TEST_F(SessionLockTest, AScreenSaverThatCrashesLocksNothingAnyMore) {
    const SessionLock lock(mainLoop, buses());
    {
        auto saver = connect("crashing", "org.gnome.ScreenSaver");
        ASSERT_TRUE(waitUntilItLocks(saver, "org.gnome.ScreenSaver", lock));
    }
    QDBusConnection::disconnectFromBus("crashing");
    EXPECT_TRUE(waitUntil([&] { return !lock.isLocked(); }));
}

TEST_F(SessionLockTest, AScreenSaverThatEndsAtOnceLocksNothingEither) {
    const SessionLock lock(mainLoop, buses());
    auto lasting = connect("lasting", "org.mate.ScreenSaver");
    ASSERT_TRUE(waitUntilItLocks(lasting, "org.mate.ScreenSaver", lock));
    for (int round = 0; round < 50; ++round) {
        const auto name = QStringLiteral("brief-%1").arg(round);
        connect(name, "org.gnome.ScreenSaver").send(screenSaver("org.gnome.ScreenSaver", true));
        QDBusConnection::disconnectFromBus(name);
    }
    lasting.send(screenSaver("org.mate.ScreenSaver", false));
    EXPECT_TRUE(waitUntil([&] { return !lock.isLocked(); }));
}

TEST_F(SessionLockTest, AMachineThatGoesToSleepCountsAsLockedUntilItIsAwake) {
    auto login = connect("sleepy-login", "org.freedesktop.login1");
    FakeLoginManager manager(false);
    login.registerVirtualObject("/org/freedesktop/login1", &manager, QDBusConnection::SubPath);
    const SessionLock lock(mainLoop, buses());
    ASSERT_TRUE(waitUntil([&] { return manager.stateRequestCount == 1; }));
    const auto prepareForSleep = [&](bool isStarting) {
        auto message =
            QDBusMessage::createSignal("/org/freedesktop/login1", "org.freedesktop.login1.Manager", "PrepareForSleep");
        message.setArguments({isStarting});
        login.send(message);
    };
    prepareForSleep(true);
    ASSERT_TRUE(waitUntil([&] { return lock.isLocked(); }));
    prepareForSleep(false);
    EXPECT_TRUE(waitUntil([&] { return !lock.isLocked(); }));
}

TEST_F(SessionLockTest, ASleepWhoseEndWasLostWithTheBusLocksNoLonger) {
    test::RestartableBus system;
    auto login = QDBusConnection::connectToBus(QString::fromStdString(system.address()), "login-that-goes");
    ASSERT_TRUE(login.registerService("org.freedesktop.login1"));
    FakeLoginManager manager(false);
    login.registerVirtualObject("/org/freedesktop/login1", &manager, QDBusConnection::SubPath);
    const SessionLock lock(mainLoop, {system.address(), std::nullopt});
    ASSERT_TRUE(waitUntil([&] { return manager.stateRequestCount == 1; }));
    auto message =
        QDBusMessage::createSignal("/org/freedesktop/login1", "org.freedesktop.login1.Manager", "PrepareForSleep");
    message.setArguments({true});
    login.send(message);
    ASSERT_TRUE(waitUntil([&] { return lock.isLocked(); }));
    system.end();
    EXPECT_TRUE(waitUntil([&] { return !lock.isLocked(); }));
    QDBusConnection::disconnectFromBus("login-that-goes");
}

TEST_F(SessionLockTest, EachWordOfALockIsPassedOnAtOnceHoweverBusyTheMainThreadIs) {
    auto login = connect("insisting-login", "org.freedesktop.login1");
    FakeLoginManager manager(false);
    login.registerVirtualObject("/org/freedesktop/login1", &manager, QDBusConnection::SubPath);
    std::counting_semaphore<> words(0);
    const SessionLock lock(mainLoop, buses(), [&] { words.release(); });
    ASSERT_TRUE(waitUntil([&] { return manager.stateRequestCount == 1; }));
    // Not every locker says when it is done: a session that counts as locked may be locked again.
    for (int time = 1; time <= 2; ++time) {
        login.send(QDBusMessage::createSignal(sessionPath, sessionInterface, "Lock"));
        EXPECT_TRUE(words.try_acquire_for(std::chrono::seconds(20))) << time;
    }
    EXPECT_FALSE(lock.isLocked()) << "the main loop has not run";
}

TEST_F(SessionLockTest, WithoutABusTheSessionIsNeverLocked) {
    const SessionLock none(mainLoop, {});
    const SessionLock unreachable(mainLoop, {"unix:path=/nonexistent/bus", "unix:path=/nonexistent/bus"});
    EXPECT_FALSE(none.isLocked());
    EXPECT_FALSE(unreachable.isLocked());
}

}  // namespace
}  // namespace ferrowyn

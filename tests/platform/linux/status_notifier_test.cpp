#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <QCoreApplication>
#include <QDBusAbstractAdaptor>
#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusInterface>
#include <QDBusMessage>
#include <QDBusReply>
#include <QElapsedTimer>
#include <QEvent>
#include <QProcess>
#include <QTimer>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/linux/linux_tray_icon.h"
#include "platform/linux/status_notifier.h"
#include "platform/qt/qt_main_loop.h"
#include "tests/platform/linux/fake_status_notifier_watcher.h"
#include "tests/platform/linux/restartable_bus.h"

namespace ferrowyn {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;
using Host = LinuxTrayIcon::Host;

/// Every pixel half transparent red, so that a mistake in order or in the kind of alpha shows.
QImage redIcon(const std::string& /*symbol*/, int side, const std::optional<QColor>& /*color*/) {
    QImage image(side, side, QImage::Format_ARGB32_Premultiplied);
    image.fill(QColor(255, 0, 0, 128));
    return image;
}

/// The other way to show an icon.
class FakeFallback final : public TrayIcon {
public:
    struct Record {
        int livingCount = 0;
        int madeCount = 0;
        bool isShown = true;
        std::string symbol;
        std::string toolTip;
        std::function<void(const Rect&)> press;
    };
    explicit FakeFallback(Record& record) : record_(record) {
        ++record_.livingCount;
        ++record_.madeCount;
    }
    ~FakeFallback() override { --record_.livingCount; }
    void setIcon(const std::string& symbol) override { record_.symbol = symbol; }
    void setToolTip(const std::string& title) override { record_.toolTip = title; }
    void setPressHandler(std::function<void(const Rect&)> handler) override { record_.press = std::move(handler); }
    [[nodiscard]] bool isShown() const override { return record_.isShown; }

private:
    Record& record_;
};

/// A private bus, on which the test plays the desktop's side.
class StatusNotifierTest : public testing::Test {
protected:
    void SetUp() override {
        daemon.start("dbus-daemon", {"--session", "--nofork", "--print-address"});
        ASSERT_TRUE(daemon.waitForReadyRead(20000));
        address = daemon.readLine().trimmed().toStdString();
    }
    void TearDown() override {
        icon.reset();
        endBus();
    }
    void endBus() {
        daemon.terminate();
        daemon.waitForFinished();
    }
    void makeIcon(std::optional<std::string> bus) {
        icon = std::make_unique<LinuxTrayIcon>(mainLoop, work, bus, redIcon,
                                               [this] { return std::make_unique<FakeFallback>(fallback); });
        icon->setPressHandler([this](const Rect& anchor) { presses.push_back(anchor); });
        icon->setIcon("power");
        icon->setToolTip("Ferrowyn — shortcut disabled by the system");
    }
    [[nodiscard]] std::unique_ptr<test::FakeStatusNotifierWatcher> startWatcher(bool hasHost) const {
        return std::make_unique<test::FakeStatusNotifierWatcher>(QString::fromStdString(address), hasHost);
    }

    /// Runs the loop until the condition holds; false when it never does.
    static bool waitUntil(const std::function<bool()>& condition) {
        QElapsedTimer clock;
        clock.start();
        QTimer wake;
        wake.start(std::chrono::milliseconds(100));
        while (!condition()) {
            if (clock.hasExpired(20000)) {
                return false;
            }
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        }
        return true;
    }
    bool waitForHost(Host host) {
        return waitUntil([&] { return icon->shownBy() == host; });
    }

    QProcess daemon;
    std::string address;
    QtMainLoop mainLoop;
    QtBackgroundWork work;
    FakeFallback::Record fallback;
    std::unique_ptr<LinuxTrayIcon> icon;
    std::vector<Rect> presses;
};

TEST_F(StatusNotifierTest, OffersItselfToTheWatcherUnderANameOfItsOwn) {
    const auto watcher = startWatcher(true);
    makeIcon(address);
    ASSERT_TRUE(waitForHost(Host::statusNotifier));
    ASSERT_TRUE(waitUntil([&] { return !watcher->items().isEmpty(); }));
    ASSERT_THAT(watcher->items(), SizeIs(1));
    EXPECT_TRUE(watcher->items().front().startsWith(QStringLiteral("org.kde.StatusNotifierItem-%1-").arg(getpid())));
    EXPECT_EQ(fallback.madeCount, 0) << "nothing flashes in another tray first";
}

TEST_F(StatusNotifierTest, TellsHostsEverythingTheyAskFor) {
    registerStatusNotifierTypes();
    const auto watcher = startWatcher(true);
    makeIcon(address);
    ASSERT_TRUE(waitUntil([&] { return !watcher->items().isEmpty(); }));
    const QVariantMap properties = watcher->propertiesOfItem();
    EXPECT_EQ(properties["Category"], "ApplicationStatus");
    EXPECT_EQ(properties["Id"], "ferrowyn");
    EXPECT_EQ(properties["Title"], "Ferrowyn");
    EXPECT_EQ(properties["Status"], "Active");
    EXPECT_EQ(properties["ItemIsMenu"], false);
    EXPECT_EQ(properties["IconName"], "") << "hosts prefer a name to the picture";
    EXPECT_FALSE(properties.contains("Menu")) << "hosts would show that instead of telling of the press";

    const auto toolTip = qdbus_cast<StatusNotifierToolTip>(properties["ToolTip"]);
    EXPECT_EQ(toolTip.title, "Ferrowyn — shortcut disabled by the system");

    const auto pixmaps = qdbus_cast<StatusNotifierPixmaps>(properties["IconPixmap"]);
    std::vector<int> sides;
    for (const auto& pixmap : pixmaps) {
        sides.push_back(pixmap.width);
        EXPECT_EQ(pixmap.height, pixmap.width);
        ASSERT_EQ(pixmap.bytes.size(), 4 * pixmap.width * pixmap.height);
        EXPECT_EQ(pixmap.bytes.left(4).toHex(), "80ff0000") << "alpha first, and the colour not dimmed by it";
    }
    EXPECT_THAT(sides, ElementsAre(16, 22, 24, 32, 48, 64));
}

TEST_F(StatusNotifierTest, EveryKindOfPressIsTheSamePress) {
    const auto watcher = startWatcher(true);
    makeIcon(address);
    ASSERT_TRUE(waitUntil([&] { return !watcher->items().isEmpty(); }));
    watcher->callItem("Activate", {10, 20});
    watcher->callItem("ContextMenu", {30, 40});
    watcher->callItem("SecondaryActivate", {50, 60});
    ASSERT_TRUE(waitUntil([&] { return presses.size() == 3; }));
    EXPECT_THAT(presses, ElementsAre(Rect{10, 20, 0, 0}, Rect{30, 40, 0, 0}, Rect{50, 60, 0, 0}));
    watcher->callItem("Scroll", {120, "vertical"});
    watcher->callItem("Activate", {1, 2});
    ASSERT_TRUE(waitUntil([&] { return presses.size() == 4; })) << "the wheel is no press";
}

TEST_F(StatusNotifierTest, TellsHostsOfANewIconATooltipAndAnotherTheme) {
    const auto watcher = startWatcher(true);
    makeIcon(address);
    ASSERT_TRUE(waitUntil([&] { return !watcher->items().isEmpty(); }));
    watcher->listenToItem();
    icon->setIcon("exclamationmark.triangle");
    icon->setToolTip("Ferrowyn");
    ASSERT_TRUE(waitUntil([&] { return watcher->heard().size() == 2; }));
    EXPECT_THAT(watcher->heard(), ElementsAre("NewIcon", "NewToolTip"));
    icon->setIcon("exclamationmark.triangle");
    icon->setToolTip("Ferrowyn");
    QEvent themeChange(QEvent::ApplicationPaletteChange);
    QCoreApplication::sendEvent(QCoreApplication::instance(), &themeChange);
    ASSERT_TRUE(waitUntil([&] { return watcher->heard().size() == 3; }));
    EXPECT_THAT(watcher->heard(), ElementsAre("NewIcon", "NewToolTip", "NewIcon")) << "what is set again tells nothing";
}

TEST_F(StatusNotifierTest, ANewWatcherIsOfferedTheIconAgain) {
    auto watcher = startWatcher(true);
    makeIcon(address);
    ASSERT_TRUE(waitUntil([&] { return !watcher->items().isEmpty(); }));
    watcher.reset();
    ASSERT_TRUE(waitForHost(Host::fallback));
    EXPECT_EQ(fallback.symbol, "power");
    EXPECT_EQ(fallback.toolTip, "Ferrowyn — shortcut disabled by the system");
    watcher = startWatcher(true);
    ASSERT_TRUE(waitForHost(Host::statusNotifier));
    EXPECT_TRUE(waitUntil([&] { return !watcher->items().isEmpty(); }));
    EXPECT_EQ(fallback.livingCount, 0);
}

TEST_F(StatusNotifierTest, AWatcherWithoutAHostShowsNothingUntilOneComes) {
    const auto watcher = startWatcher(false);
    makeIcon(address);
    ASSERT_TRUE(waitForHost(Host::fallback));
    EXPECT_TRUE(waitUntil([&] { return !watcher->items().isEmpty(); }));
    watcher->setHasHost(true);
    ASSERT_TRUE(waitForHost(Host::statusNotifier));
    EXPECT_EQ(fallback.livingCount, 0);
    watcher->setHasHost(false);
    ASSERT_TRUE(waitForHost(Host::fallback));
}

TEST_F(StatusNotifierTest, WithoutAWatcherAPressOfTheOtherIconCounts) {
    makeIcon(address);
    ASSERT_TRUE(waitForHost(Host::fallback));
    fallback.press({1, 2, 3, 4});
    EXPECT_THAT(presses, ElementsAre(Rect{1, 2, 3, 4}));
    icon->setIcon("gearshape");
    icon->setToolTip("Ferrowyn");
    EXPECT_EQ(fallback.symbol, "gearshape");
    EXPECT_EQ(fallback.toolTip, "Ferrowyn");
}

TEST_F(StatusNotifierTest, WithoutABusTheOtherWayIsTaken) {
    makeIcon(std::nullopt);
    EXPECT_TRUE(waitForHost(Host::fallback));
}

TEST_F(StatusNotifierTest, ABusThatCannotBeReachedIsNone) {
    makeIcon("unix:path=/nonexistent/bus");
    EXPECT_TRUE(waitForHost(Host::fallback));
}

TEST_F(StatusNotifierTest, WhenTheBusEndsTheOtherWayIsTaken) {
    const auto watcher = startWatcher(true);
    makeIcon(address);
    ASSERT_TRUE(waitForHost(Host::statusNotifier));
    endBus();
    EXPECT_TRUE(waitForHost(Host::fallback));
}

TEST_F(StatusNotifierTest, ABusThatIsStartedAgainGetsTheIconAgain) {
    test::RestartableBus bus;
    const auto startWatcherThere = [&] {
        return std::make_unique<test::FakeStatusNotifierWatcher>(QString::fromStdString(bus.address()), true);
    };
    auto watcher = startWatcherThere();
    makeIcon(bus.address());
    for (int round = 0; round < 2; ++round) {
        ASSERT_TRUE(waitForHost(Host::statusNotifier)) << round;
        watcher.reset();
        bus.end();
        ASSERT_TRUE(waitForHost(Host::fallback)) << round;
        bus.start();
        watcher = startWatcherThere();
    }
    ASSERT_TRUE(waitForHost(Host::statusNotifier));
    EXPECT_EQ(fallback.livingCount, 0);
    ASSERT_TRUE(waitUntil([&] { return !watcher->items().isEmpty(); }));
    EXPECT_THAT(watcher->items(), SizeIs(1));
    EXPECT_EQ(watcher->propertiesOfItem().value("Id").toString(), "ferrowyn");
    watcher->callItem("Activate", {10, 20});
    EXPECT_TRUE(waitUntil([&] { return !presses.empty(); }));
}

TEST_F(StatusNotifierTest, ABusThatComesLateGetsTheIconThen) {
    test::RestartableBus bus;
    bus.end();
    makeIcon(bus.address());
    ASSERT_TRUE(waitForHost(Host::fallback));
    bus.start();
    const test::FakeStatusNotifierWatcher watcher(QString::fromStdString(bus.address()), true);
    EXPECT_TRUE(waitForHost(Host::statusNotifier));
}

TEST_F(StatusNotifierTest, AnIconThatGoesAtOnceLeavesNothingBehind) {
    const auto watcher = startWatcher(true);
    makeIcon(address);
    icon.reset();
    makeIcon(address);
    ASSERT_TRUE(waitUntil([&] { return !watcher->items().isEmpty(); }));
    EXPECT_THAT(watcher->items(), SizeIs(1));
}

TEST_F(StatusNotifierTest, AnIconThatNoTrayTakesIsNotShown) {
    fallback.isShown = false;
    makeIcon(address);
    ASSERT_TRUE(waitUntil([&] { return fallback.madeCount == 1; }));
    EXPECT_FALSE(icon->isShown());
    EXPECT_THAT(presses, IsEmpty());
}

}  // namespace
}  // namespace ferrowyn

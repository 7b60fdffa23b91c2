#include "main/doctor.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QDBusVirtualObject>
#include <QProcess>
#include <QThread>
#include <filesystem>
#include <memory>

#include "tests/platform/linux/temporary_folder.h"

namespace ferrowyn {
namespace {

namespace fs = std::filesystem;
using testing::AllOf;
using testing::EndsWith;
using testing::HasSubstr;

using Verdict = DoctorFinding::Verdict;

TEST(DoctorReportTest, OnlyWhatIsBadKeepsSwitchingFromWorking) {
    EXPECT_TRUE(switchingCanWork({}));
    EXPECT_TRUE(switchingCanWork({{Verdict::good, "a", "", ""}, {Verdict::notice, "b", "", ""}}));
    EXPECT_FALSE(switchingCanWork({{Verdict::good, "a", "", ""}, {Verdict::bad, "b", "", ""}}));
}

TEST(DoctorReportTest, SaysTheOutcomeFirstAndTheAdviceBelowItsFinding) {
    EXPECT_EQ(formatted({{Verdict::good, "display", ":0", ""}, {Verdict::notice, "tray", "none", "Do this."}}),
              "Switching windows can work here.\n"
              "\n"
              "[ ok ] display  :0\n"
              "[note] tray     none\n"
              "                -> Do this.\n");
    EXPECT_EQ(formatted({{Verdict::bad, "x", "none", ""}}),
              "Switching windows cannot work here yet.\n"
              "\n"
              "[FAIL] x  none\n");
}

class DoctorSessionTest : public testing::Test {
protected:
    [[nodiscard]] DoctorSession session(std::optional<std::string> bus = std::nullopt) const {
        XdgFolders folders;
        folders.configHome = folder.path();
        return {folders, std::move(bus)};
    }
    void writeSettings(const std::string& text) const { folder.write("Ferrowyn/Ferrowyn.ini", text); }
    void writeAutostart(const std::string& text) const {
        folder.write("autostart/com.larkmoor.ferrowyn.desktop", text);
    }

    TemporaryFolder folder;
};

// --- files
// ------------------------------------------------------------------------------------------------------------

TEST_F(DoctorSessionTest, MissingSettingsAreTheDefaults) {
    const auto finding = session().settingsFile();
    EXPECT_EQ(finding.verdict, Verdict::good);
    EXPECT_THAT(finding.text, EndsWith("Ferrowyn.ini is not there yet; the defaults are in force"));
    EXPECT_EQ(session().trigger(), SwitcherModifier::option);
}

TEST_F(DoctorSessionTest, ReadsTheTriggerFromTheSettings) {
    writeSettings("[switcher]\nmodifier=\"command\"\n");
    EXPECT_EQ(session().trigger(), SwitcherModifier::command);
    EXPECT_EQ(session().settingsFile().verdict, Verdict::good);
    writeSettings("[switcher]\nmodifier=\"hyper\"\n");
    EXPECT_EQ(session().trigger(), SwitcherModifier::option);
}

TEST_F(DoctorSessionTest, NamesDamagedSettingsAndLeavesThemAlone) {
    writeSettings("[switcher\n");
    const auto finding = session().settingsFile();
    EXPECT_EQ(finding.verdict, Verdict::notice);
    EXPECT_THAT(finding.text, EndsWith("is damaged"));
    EXPECT_EQ(session().trigger(), SwitcherModifier::option);
    EXPECT_EQ(TemporaryFolder::read(folder.path() / "Ferrowyn/Ferrowyn.ini"), "[switcher\n");
}

TEST_F(DoctorSessionTest, NamesSettingsThatCannotBeRead) {
    fs::create_directories(folder.path() / "Ferrowyn/Ferrowyn.ini");
    const auto finding = session().settingsFile();
    EXPECT_EQ(finding.verdict, Verdict::notice);
    EXPECT_THAT(finding.text, HasSubstr("cannot be read: it is not a regular file"));
}

TEST_F(DoctorSessionTest, NamesFilesWithoutTheNameOfThePerson) {
    const char* const home = std::getenv("HOME");
    const auto before = home == nullptr ? std::optional<std::string>() : std::optional<std::string>(home);
    setenv("HOME", folder.path().c_str(), 1);
    writeSettings("");
    EXPECT_EQ(session().settingsFile().text, "~/Ferrowyn/Ferrowyn.ini");
    before ? setenv("HOME", before->c_str(), 1) : unsetenv("HOME");
}

TEST_F(DoctorSessionTest, EveryStateOfTheAutostartEntryHasItsWords) {
    EXPECT_EQ(session().autostart(), (DoctorFinding{Verdict::good, "autostart", "off", ""}));
    writeAutostart("[Desktop Entry]\nType=Application\nExec=sh -c doctor_test\n");
    EXPECT_EQ(session().autostart(), (DoctorFinding{Verdict::good, "autostart", "on", ""}));
    writeAutostart("[Desktop Entry]\nType=Application\nExec=sh -c doctor_test\nHidden=true\n");
    EXPECT_EQ(session().autostart().verdict, Verdict::notice);
    EXPECT_THAT(session().autostart().text, HasSubstr("turned off"));
    fs::remove_all(folder.path() / "autostart");
    folder.write("autostart", "a file");
    EXPECT_EQ(session().autostart().verdict, Verdict::notice);
    EXPECT_THAT(session().autostart().text, HasSubstr("cannot be written"));
}

TEST_F(DoctorSessionTest, NamesTheVersions) {
    EXPECT_THAT(DoctorSession::versions("1.2.3").text,
                AllOf(HasSubstr("Ferrowyn 1.2.3"), HasSubstr(std::string("Qt ") + qVersion()), HasSubstr("kernel ")));
}

// --- the tray
// ---------------------------------------------------------------------------------------------------------

/// Tells whether a host shows icons; runs on another thread, because the question waits for the answer.
class FakeWatcher final : public QDBusVirtualObject {
public:
    explicit FakeWatcher(bool hasHost) : hasHost_(hasHost) {}
    [[nodiscard]] QString introspect(const QString& /*path*/) const override { return {}; }
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& bus) override {
        const bool isTheQuestion =
            message.member() == "Get" && message.arguments().value(1).toString() == "IsStatusNotifierHostRegistered";
        return isTheQuestion && bus.send(message.createReply(QVariant::fromValue(QDBusVariant(hasHost_))));
    }

private:
    bool hasHost_;
};

class DoctorTrayTest : public DoctorSessionTest {
protected:
    void SetUp() override {
        daemon.start("dbus-daemon", {"--session", "--nofork", "--print-address"});
        ASSERT_TRUE(daemon.waitForReadyRead(20000));
        address = daemon.readLine().trimmed().toStdString();
    }
    void TearDown() override {
        stopWatcher();
        daemon.terminate();
        daemon.waitForFinished();
    }
    void startWatcher(bool hasHost) {
        watcher = new FakeWatcher(hasHost);
        auto bus = QDBusConnection::connectToBus(QString::fromStdString(address), "watcher");
        ASSERT_TRUE(bus.registerVirtualObject("/StatusNotifierWatcher", watcher));
        ASSERT_TRUE(bus.registerService("org.kde.StatusNotifierWatcher"));
        watcher->moveToThread(&thread);
        QObject::connect(&thread, &QThread::finished, watcher, &QObject::deleteLater);
        thread.start();
    }
    void stopWatcher() {
        QDBusConnection::disconnectFromBus("watcher");
        thread.quit();
        thread.wait();
    }

    QProcess daemon;
    std::string address;
    QThread thread;
    FakeWatcher* watcher = nullptr;
};

TEST_F(DoctorTrayTest, FindsAHostOnTheBus) {
    startWatcher(true);
    EXPECT_EQ(session(address).trayHost(false),
              (DoctorFinding{Verdict::good, "tray", "a StatusNotifierItem host on the session bus", ""}));
}

TEST_F(DoctorTrayTest, AWatcherWithoutAHostIsNoTray) {
    startWatcher(false);
    EXPECT_EQ(session(address).trayHost(false).verdict, Verdict::notice);
    EXPECT_EQ(session(address).trayHost(false).text, "none");
    EXPECT_EQ(session(address).trayHost(true), (DoctorFinding{Verdict::good, "tray", "an XEmbed tray", ""}));
}

TEST_F(DoctorTrayTest, ABusWithoutAWatcherIsNoTray) {
    EXPECT_EQ(session(address).trayHost(false).text, "none");
    EXPECT_THAT(session(address).trayHost(false).advice, HasSubstr("ferrowyn --settings"));
}

TEST_F(DoctorTrayTest, AMissingBusIsNamed) {
    EXPECT_EQ(session().trayHost(false).text, "none, and no session bus");
    EXPECT_EQ(session("unix:path=/nonexistent/bus").trayHost(false).verdict, Verdict::notice);
    EXPECT_EQ(session().trayHost(true).verdict, Verdict::good);
}

}  // namespace
}  // namespace ferrowyn

#include "platform/linux/desktop_programs.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVirtualObject>
#include <QEventLoop>
#include <QProcess>
#include <QString>
#include <QTimer>
#include <chrono>
#include <filesystem>
#include <fstream>

#include "tests/platform/linux/temporary_folder.h"

namespace ferrowyn {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::Optional;

class AutostartSettingsTest : public testing::Test {
protected:
    [[nodiscard]] fs::path programs() const { return folder.path() / "programs"; }
    void install(const std::string& name) const {
        fs::create_directories(programs());
        std::ofstream(programs() / name) << "#!/bin/sh\n";
        fs::permissions(programs() / name, fs::perms::owner_all);
    }
    [[nodiscard]] auto commandOn(const char* desktop) const {
        return autostartSettingsCommand({desktop, "/nonexistent:" + programs().string()});
    }
    /// Without a bus, so that no file manager takes the request.
    void open(const fs::path& entry) {
        const auto noBus = QDBusConnection::connectToBus("unix:path=/nonexistent/bus", "none");
        openAutostartSettings(noBus, entry,
                              [this](const QString& address) { opened.push_back(address.toStdString()); });
        QTimer wake;
        wake.start(std::chrono::milliseconds(100));
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(20);
        while (opened.empty() && std::chrono::steady_clock::now() < deadline) {
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        }
    }

    TemporaryFolder folder;
    std::vector<std::string> opened;
};

TEST_F(AutostartSettingsTest, AreTheProgramOfTheDesktop) {
    for (const auto* const name : {"xfce4-session-settings", "mate-session-properties", "lxqt-config-session",
                                   "lxsession-edit", "cinnamon-settings", "systemsettings", "gnome-tweaks"}) {
        install(name);
    }
    const auto at = [&](const char* name) { return (programs() / name).string(); };
    EXPECT_THAT(commandOn("XFCE"), Optional(ElementsAre(at("xfce4-session-settings"))));
    EXPECT_THAT(commandOn("MATE"), Optional(ElementsAre(at("mate-session-properties"))));
    EXPECT_THAT(commandOn("LXQt"), Optional(ElementsAre(at("lxqt-config-session"))));
    EXPECT_THAT(commandOn("LXDE"), Optional(ElementsAre(at("lxsession-edit"))));
    EXPECT_THAT(commandOn("X-Cinnamon"), Optional(ElementsAre(at("cinnamon-settings"), "startup")));
    EXPECT_THAT(commandOn("KDE"), Optional(ElementsAre(at("systemsettings"), "kcm_autostart")));
    EXPECT_THAT(commandOn("ubuntu:GNOME"), Optional(ElementsAre(at("gnome-tweaks"))));
    EXPECT_EQ(commandOn("Openbox"), std::nullopt);
    EXPECT_EQ(commandOn(""), std::nullopt);
}

TEST_F(AutostartSettingsTest, AreAnOlderProgramOfTheDesktopWhereThatIsInstalled) {
    install("kcmshell5");
    EXPECT_THAT(commandOn("KDE"), Optional(ElementsAre((programs() / "kcmshell5").string(), "kcm_autostart")));
    install("systemsettings5");
    EXPECT_THAT(commandOn("KDE"), Optional(ElementsAre((programs() / "systemsettings5").string(), "kcm_autostart")));
}

TEST_F(AutostartSettingsTest, AreNotThereWhereTheirProgramIsNotInstalled) {
    install("xfce4-session-settings");
    EXPECT_EQ(commandOn("GNOME"), std::nullopt);
    EXPECT_EQ(autostartSettingsCommand({"XFCE", ""}), std::nullopt);
}

TEST_F(AutostartSettingsTest, AreTheEntrysFolderOnADesktopThatHasNone) {
    qunsetenv("XDG_CURRENT_DESKTOP");
    const auto entry = folder.path() / "autostart/ferrowyn.desktop";
    fs::create_directories(entry.parent_path());
    std::ofstream(entry) << "[Desktop Entry]\n";
    open(entry);
    EXPECT_THAT(opened, ElementsAre("file://" + entry.parent_path().string()));
}

TEST_F(AutostartSettingsTest, AreTheEntrysFolderWhereTheirProgramCannotBeStarted) {
    install("gnome-tweaks");
    std::ofstream(programs() / "gnome-tweaks") << "#!/nonexistent/interpreter\n";
    const auto path = qgetenv("PATH");
    qputenv("PATH", QByteArray::fromStdString(programs().string()));
    qputenv("XDG_CURRENT_DESKTOP", "GNOME");
    open(folder.path() / "ferrowyn.desktop");
    EXPECT_THAT(opened, ElementsAre("file://" + folder.path().string()));
    qunsetenv("XDG_CURRENT_DESKTOP");
    qputenv("PATH", path);
}

TEST_F(AutostartSettingsTest, AreTheNearestFolderThatExistsWithoutAnEntry) {
    qunsetenv("XDG_CURRENT_DESKTOP");
    open(folder.path() / "config/autostart/ferrowyn.desktop");
    EXPECT_THAT(opened, ElementsAre("file://" + folder.path().string()));
}

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

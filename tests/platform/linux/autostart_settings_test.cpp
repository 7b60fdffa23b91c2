#include "platform/linux/desktop_programs.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QDBusConnection>
#include <QEventLoop>
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

}  // namespace
}  // namespace ferrowyn

#include "platform/linux/xdg_login_item.h"

#include <unistd.h>

#include <QCoreApplication>
#include <QFileSystemWatcher>
#include <QProcess>
#include <QProcessEnvironment>
#include <filesystem>
#include <fstream>

#include "tests/platform/linux/temporary_folder.h"

namespace ferrowyn {
namespace {

namespace fs = std::filesystem;
using testing::AllOf;
using testing::HasSubstr;
using testing::Not;
using Status = LoginItem::Status;

class XdgLoginItemTest : public testing::Test {
protected:
    XdgLoginItemTest() {
        folders.configHome = folder.path() / "config home";
        folders.configDirs = {folder.path() / "etc/first", folder.path() / "etc/second"};
        makeProgram(program);
    }
    /// A program that leaves a file named after it, with what it was called as.
    static void makeProgram(const fs::path& file) {
        fs::create_directories(file.parent_path());
        std::ofstream(file)
            << "#!/bin/sh\nprintf '%s|' \"$0\" \"$@\" > \"$STARTED.new\"\nmv \"$STARTED.new\" \"$STARTED\"\n";
        fs::permissions(file, fs::perms::owner_all);
    }
    [[nodiscard]] XdgLoginItem item() const {
        return {folders, {"com.larkmoor.ferrowyn", "Ferrowyn", program}, {currentDesktop, "/usr/bin:/bin"}};
    }
    [[nodiscard]] fs::path userEntry() const { return entryIn(folders.configHome); }
    [[nodiscard]] static fs::path entryIn(const fs::path& configFolder) {
        return configFolder / "autostart/com.larkmoor.ferrowyn.desktop";
    }
    static void write(const fs::path& file, const std::string& text) {
        fs::create_directories(file.parent_path());
        std::ofstream(file) << text;
    }
    /// An entry that starts the program, and these further lines.
    [[nodiscard]] std::string entry(const std::string& further = "", std::string command = "") const {
        if (command.empty()) {
            command = '"' + program.string() + '"';
        }
        return "[Desktop Entry]\nType=Application\nName=Ferrowyn\nExec=" + command + "\n" + further;
    }
    [[nodiscard]] Status statusOf(const std::string& text) const {
        write(userEntry(), text);
        return item().status();
    }
    [[nodiscard]] std::string userText() const { return TemporaryFolder::read(userEntry()); }

    TemporaryFolder folder;
    XdgFolders folders;
    fs::path program = folder.path() / "bin/ferrowyn";
    std::string currentDesktop = "ubuntu:GNOME";
};

// --- the four states

TEST_F(XdgLoginItemTest, WithoutAnEntryItIsNotRegistered) {
    EXPECT_EQ(item().status(), Status::notRegistered);
    EXPECT_FALSE(fs::exists(folders.configHome)) << "asking changes nothing";
}

TEST_F(XdgLoginItemTest, RegisteringAndUnregisteringLeaveNothingBehind) {
    EXPECT_EQ(item().registerProgram(), std::nullopt);
    EXPECT_EQ(item().status(), Status::enabled);
    EXPECT_EQ(userText(), "[Desktop Entry]\nType=Application\nName=Ferrowyn\nIcon=com.larkmoor.ferrowyn\nExec=" +
                              program.string() + "\nTryExec=" + program.string() + "\n");
    EXPECT_EQ(std::distance(fs::directory_iterator(userEntry().parent_path()), {}), 1);
    EXPECT_EQ(item().unregisterProgram(), std::nullopt);
    EXPECT_EQ(item().status(), Status::notRegistered);
    EXPECT_FALSE(fs::exists(userEntry()));
    EXPECT_EQ(item().unregisterProgram(), std::nullopt) << "again";
}

TEST_F(XdgLoginItemTest, WhatSomebodyElseTurnedOffNeedsApproval) {
    EXPECT_EQ(statusOf(entry()), Status::enabled);
    EXPECT_EQ(statusOf(entry("Hidden=true\n")), Status::requiresApproval);
    EXPECT_EQ(statusOf(entry("Hidden=false\n")), Status::enabled);
    EXPECT_EQ(statusOf(entry("X-GNOME-Autostart-enabled=false\n")), Status::requiresApproval);
    EXPECT_EQ(statusOf(entry("X-GNOME-Autostart-enabled=true\n")), Status::enabled);
    EXPECT_EQ(statusOf(entry("X-MATE-Autostart-enabled=false\n")), Status::requiresApproval);
    EXPECT_EQ(statusOf(entry("X-MATE-Autostart-enabled=true\n")), Status::enabled);
}

TEST_F(XdgLoginItemTest, AnEntryForOtherDesktopsNeedsApproval) {
    EXPECT_EQ(statusOf(entry("OnlyShowIn=KDE;XFCE;\n")), Status::requiresApproval);
    EXPECT_EQ(statusOf(entry("OnlyShowIn=KDE;GNOME;\n")), Status::enabled);
    EXPECT_EQ(statusOf(entry("NotShowIn=GNOME;\n")), Status::requiresApproval);
    EXPECT_EQ(statusOf(entry("NotShowIn=KDE;\n")), Status::enabled);
    // The first desktop that either list names decides.
    EXPECT_EQ(statusOf(entry("OnlyShowIn=GNOME;\nNotShowIn=ubuntu;\n")), Status::requiresApproval);
    EXPECT_EQ(statusOf(entry("OnlyShowIn=ubuntu;\nNotShowIn=GNOME;\n")), Status::enabled);
    currentDesktop = "";
    EXPECT_EQ(statusOf(entry("OnlyShowIn=GNOME;\n")), Status::requiresApproval);
    EXPECT_EQ(statusOf(entry("NotShowIn=GNOME;\n")), Status::enabled);
}

TEST_F(XdgLoginItemTest, AnEntryThatAPersonPointedElsewhereNeedsApproval) {
    EXPECT_EQ(statusOf(entry("", "sh -c true")), Status::requiresApproval);
    EXPECT_EQ(statusOf(entry("", "sh -c \"sleep 5; ferrowyn-next\"")), Status::requiresApproval);
}

TEST_F(XdgLoginItemTest, AnEntryThatStartsTheProgramInAnotherWayIsEnabled) {
    EXPECT_EQ(statusOf(entry("", "sh -c \"sleep 5; " + program.string() + "\"")), Status::enabled);
    EXPECT_EQ(statusOf(entry("", "env LANG=C ferrowyn")), Status::enabled);
    const auto other = folder.path() / "opt/ferrowyn";
    makeProgram(other);
    EXPECT_EQ(statusOf(entry("", other.string())), Status::enabled);
}

TEST_F(XdgLoginItemTest, AnEntryThatStartsNothingIsNoRegistration) {
    EXPECT_EQ(statusOf(entry("", "/nowhere/ferrowyn")), Status::notRegistered);
    EXPECT_EQ(statusOf(entry("", "\"open quote")), Status::notRegistered);
    EXPECT_EQ(statusOf(entry("TryExec=/nowhere/ferrowyn\n")), Status::notRegistered);
    EXPECT_EQ(statusOf(entry("TryExec=ferrowyn-is-not-in-the-path\n")), Status::notRegistered);
    EXPECT_EQ(statusOf(entry("TryExec=sh\n")), Status::enabled);
    EXPECT_EQ(statusOf("[Desktop Entry]\nType=Application\nName=Ferrowyn\n"), Status::notRegistered);
    EXPECT_EQ(statusOf("[Desktop Entry]\nType=Link\nExec=" + program.string() + "\n"), Status::notRegistered);
    EXPECT_EQ(statusOf("not a desktop file"), Status::notRegistered);
    EXPECT_EQ(statusOf(""), Status::notRegistered);
}

TEST_F(XdgLoginItemTest, AFolderThatCannotBeWrittenIsUnavailable) {
    // Not by its permissions: they do not bind an administrator, as whom tests may run.
    write(folders.configHome / "autostart", "a file where the folder should be");
    EXPECT_EQ(item().status(), Status::notFound);
    const auto error = item().registerProgram();
    ASSERT_TRUE(error);
    EXPECT_EQ(error->code, ENOTDIR);
    EXPECT_THAT(error->localizedDescription, AllOf(HasSubstr(userEntry().string()), HasSubstr("Not a directory")));
    EXPECT_EQ(item().status(), Status::notFound);
}

/// As long as it lives, the test runs as an ordinary user, even when an administrator started it.
class OrdinaryPerson {
public:
    explicit OrdinaryPerson(const fs::path& folderToOwn) : user_(geteuid()) {
        if (user_ == 0) {
            EXPECT_EQ(chown(folderToOwn.c_str(), nobody, nobody), 0);
            // The saved identity stays, as the way back.
            EXPECT_EQ(setresuid(nobody, nobody, 0), 0);
        }
    }
    ~OrdinaryPerson() { EXPECT_EQ(setresuid(user_, user_, user_), 0); }
    OrdinaryPerson(const OrdinaryPerson&) = delete;
    OrdinaryPerson& operator=(const OrdinaryPerson&) = delete;

private:
    static constexpr uid_t nobody = 65534;
    uid_t user_;
};

TEST_F(XdgLoginItemTest, APersonWithoutTheRightToWriteIsUnavailable) {
    const OrdinaryPerson person(folder.path());
    fs::create_directories(folders.configHome);
    EXPECT_EQ(item().status(), Status::notRegistered);
    fs::permissions(folders.configHome, fs::perms::owner_read | fs::perms::owner_exec);
    EXPECT_EQ(item().status(), Status::notFound);
    const auto error = item().registerProgram();
    ASSERT_TRUE(error);
    EXPECT_EQ(error->code, EACCES);
}

TEST_F(XdgLoginItemTest, SomethingElseInThePlaceOfTheEntryIsUnavailable) {
    fs::create_directories(userEntry());
    EXPECT_EQ(item().status(), Status::notFound);
    EXPECT_TRUE(item().registerProgram());
}

// --- entries of the system

TEST_F(XdgLoginItemTest, AnEntryOfTheSystemCountsUntilTheUserHasOne) {
    write(entryIn(folders.configDirs[1]), entry());
    EXPECT_EQ(item().status(), Status::enabled);
    write(entryIn(folders.configDirs[0]), entry("Hidden=true\n"));
    EXPECT_EQ(item().status(), Status::requiresApproval) << "the more important folder";
    EXPECT_EQ(statusOf(entry()), Status::enabled);
    EXPECT_EQ(statusOf("damaged"), Status::notRegistered);
}

TEST_F(XdgLoginItemTest, AnEntryOfTheSystemIsTurnedOffByOneOfTheUser) {
    write(entryIn(folders.configDirs[0]), entry());
    EXPECT_EQ(item().unregisterProgram(), std::nullopt);
    EXPECT_EQ(item().status(), Status::notRegistered) << "and needs no approval: the program itself did it";
    EXPECT_THAT(userText(), HasSubstr("Hidden=true\n"));
    EXPECT_EQ(item().registerProgram(), std::nullopt);
    EXPECT_EQ(item().status(), Status::enabled);
    EXPECT_THAT(userText(), Not(HasSubstr("Hidden")));
    EXPECT_EQ(TemporaryFolder::read(entryIn(folders.configDirs[0])), entry());
}

// --- what a person wrote

TEST_F(XdgLoginItemTest, RegisteringKeepsWhatAPersonAdded) {
    write(userEntry(), "# Mine\n" + entry("X-GNOME-Autostart-Delay=10\nHidden=true\nX-GNOME-Autostart-enabled=false\n",
                                          "/nowhere/ferrowyn"));
    EXPECT_EQ(item().registerProgram(), std::nullopt);
    EXPECT_EQ(item().status(), Status::enabled);
    EXPECT_EQ(userText(),
              "# Mine\n[Desktop Entry]\nType=Application\nName=Ferrowyn\nExec=" + program.string() +
                  "\nX-GNOME-Autostart-Delay=10\nX-GNOME-Autostart-enabled=true\nTryExec=" + program.string() + "\n");
}

TEST_F(XdgLoginItemTest, TurningOffKeepsWhatAPersonAddedForTheNextTime) {
    const auto mine = entry("X-GNOME-Autostart-Delay=10\n", "sh -c \"sleep 5; ferrowyn\"");
    write(userEntry(), mine);
    EXPECT_EQ(item().unregisterProgram(), std::nullopt);
    EXPECT_EQ(item().status(), Status::notRegistered);
    EXPECT_EQ(userText(), mine + "Hidden=true\nX-Ferrowyn-TurnedOff=true\n");
    EXPECT_EQ(item().registerProgram(), std::nullopt);
    EXPECT_EQ(item().status(), Status::enabled);
    EXPECT_EQ(userText(), mine);
}

TEST_F(XdgLoginItemTest, WhatTheUserTurnsOffAgainByHandNeedsApproval) {
    write(userEntry(), entry("Hidden=true\nX-Ferrowyn-TurnedOff=true\n"));
    EXPECT_EQ(item().status(), Status::notRegistered);
    EXPECT_EQ(item().registerProgram(), std::nullopt);
    EXPECT_EQ(item().status(), Status::enabled);
    EXPECT_EQ(statusOf(userText() + "Hidden=true\n"), Status::requiresApproval);
}

TEST_F(XdgLoginItemTest, RegisteringAnEntryForOtherDesktopsMakesItOneForThisDesktopToo) {
    const auto registered = [&](const char* desktops) {
        write(userEntry(), entry(desktops));
        EXPECT_EQ(item().status(), Status::requiresApproval) << desktops;
        EXPECT_EQ(item().registerProgram(), std::nullopt);
        EXPECT_EQ(item().status(), Status::enabled) << desktops;
        return userText();
    };
    EXPECT_THAT(registered("OnlyShowIn=KDE;XFCE;\n"), HasSubstr("OnlyShowIn=KDE;XFCE;ubuntu;GNOME;\n"));
    EXPECT_THAT(registered("NotShowIn=KDE;GNOME;\n"), HasSubstr("NotShowIn=KDE;\n"));
    EXPECT_THAT(registered("NotShowIn=GNOME;\n"), Not(HasSubstr("NotShowIn")));
    EXPECT_THAT(registered("OnlyShowIn=GNOME;\nNotShowIn=ubuntu;\n"),
                testing::AllOf(HasSubstr("OnlyShowIn=GNOME;\n"), Not(HasSubstr("NotShowIn"))));
    currentDesktop = "";
    EXPECT_THAT(registered("OnlyShowIn=KDE;\n"), Not(HasSubstr("OnlyShowIn")));
}

TEST_F(XdgLoginItemTest, AnEntryForThisDesktopKeepsTheDesktopsItIsMeantFor) {
    write(userEntry(), entry("Hidden=true\nOnlyShowIn=KDE;GNOME;\nNotShowIn=XFCE;\n"));
    EXPECT_EQ(item().registerProgram(), std::nullopt);
    EXPECT_THAT(userText(), HasSubstr("OnlyShowIn=KDE;GNOME;\nNotShowIn=XFCE;\n"));
    EXPECT_EQ(item().unregisterProgram(), std::nullopt);
    EXPECT_THAT(userText(), HasSubstr("OnlyShowIn=KDE;GNOME;\nNotShowIn=XFCE;\n"));
}

TEST_F(XdgLoginItemTest, AnEntryThatIsALinkStaysOne) {
    const auto real = folder.path() / "dotfiles/ferrowyn.desktop";
    write(real, entry("Hidden=true\n"));
    fs::create_directories(userEntry().parent_path());
    fs::create_symlink(real, userEntry());
    EXPECT_EQ(item().registerProgram(), std::nullopt);
    EXPECT_TRUE(fs::is_symlink(userEntry()));
    EXPECT_THAT(TemporaryFolder::read(real), Not(HasSubstr("Hidden")));
    EXPECT_EQ(item().status(), Status::enabled);
}

TEST_F(XdgLoginItemTest, WhatAKilledWriterLeftIsRemovedWithTheNextChange) {
    const auto left = userEntry().string() + ".unfinished-Ab3dE6";
    write(left, "[Desktop En");
    EXPECT_EQ(item().registerProgram(), std::nullopt);
    EXPECT_FALSE(fs::exists(left));
}

// --- started the way a session does it

class XdgAutostartTest : public XdgLoginItemTest {
protected:
    /// Starts the folder's entries as a session of this desktop does; answers what the program was called as, or
    /// nothing when it was not started.
    [[nodiscard]] std::string startSession() {
        // dex starts an entry's program and goes on; its list says which it will start before it does.
        EXPECT_EQ(run("dex", {"--autostart", "--environment", "GNOME"}), 0);
        return waitForStart();
    }
    [[nodiscard]] std::string launchEntry() {
        EXPECT_EQ(run("gio", {"launch", QString::fromStdString(userEntry().string())}), 0);
        return waitForStart();
    }
    /// What dex would start, without doing it.
    [[nodiscard]] bool wouldStart() {
        EXPECT_EQ(run("dex", {"--autostart", "--environment", "GNOME", "--dry-run", "--verbose"}), 0);
        return output.contains("Executing command");
    }

    QByteArray output;

private:
    int run(const QString& command, const QStringList& arguments) {
        auto environment = QProcessEnvironment::systemEnvironment();
        environment.insert("XDG_CONFIG_HOME", QString::fromStdString(folders.configHome.string()));
        environment.insert("XDG_CONFIG_DIRS", QString::fromStdString(folders.configDirs[0].string() + ":" +
                                                                     folders.configDirs[1].string()));
        environment.insert("STARTED", QString::fromStdString(started.string()));
        environment.remove("DBUS_SESSION_BUS_ADDRESS");
        environment.remove("DISPLAY");
        QProcess process;
        process.setProcessEnvironment(environment);
        process.setProcessChannelMode(QProcess::MergedChannels);
        process.start(command, arguments);
        EXPECT_TRUE(process.waitForFinished()) << command.toStdString();
        output = process.readAll();
        return process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
    }
    [[nodiscard]] std::string waitForStart() const {
        QFileSystemWatcher watcher({QString::fromStdString(folder.path().string())});
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(20);
        while (!fs::exists(started) && std::chrono::steady_clock::now() < deadline) {
            QCoreApplication::processEvents(QEventLoop::AllEvents, 200);
        }
        return TemporaryFolder::read(started);
    }

    fs::path started = folder.path() / "started";
};

TEST_F(XdgAutostartTest, ASessionStartsTheProgramFromItsEntry) {
    ASSERT_EQ(item().registerProgram(), std::nullopt);
    EXPECT_EQ(startSession(), program.string() + "|");
}

TEST_F(XdgAutostartTest, TheDesktopsOwnLauncherStartsTheProgramFromAnyPath) {
    // Without "%", which GLib looks for in its doubled form.
    for (const char* odd : {"My Programs/ferrowyn", "it's/a \"b\"/$HOME/`x`/ferrowyn",
                            "back\\slash;&|*?#()<>~/ferrowyn", "ünï/ferrowyn"}) {
        program = folder.path() / odd;
        makeProgram(program);
        ASSERT_EQ(item().registerProgram(), std::nullopt) << odd;
        EXPECT_EQ(item().status(), Status::enabled) << odd;
        EXPECT_EQ(launchEntry(), program.string() + "|");
        fs::remove(folder.path() / "started");
    }
}

TEST_F(XdgAutostartTest, ASessionStartsItExactlyWhenItIsEnabled) {
    ASSERT_EQ(item().registerProgram(), std::nullopt);
    EXPECT_TRUE(wouldStart()) << output.toStdString();
    const auto registered = userText();
    for (const char* further : {"Hidden=true\n", "OnlyShowIn=KDE;\n", "NotShowIn=GNOME;\n"}) {
        EXPECT_EQ(statusOf(registered + further), Status::requiresApproval) << further;
        EXPECT_FALSE(wouldStart()) << further << output.toStdString();
    }
    EXPECT_EQ(statusOf(entry("TryExec=/nowhere/ferrowyn\n")), Status::notRegistered);
    EXPECT_FALSE(wouldStart()) << output.toStdString();
    write(userEntry(), registered);
    EXPECT_TRUE(wouldStart()) << output.toStdString();
    ASSERT_EQ(item().unregisterProgram(), std::nullopt);
    EXPECT_FALSE(wouldStart()) << output.toStdString();
}

TEST_F(XdgAutostartTest, ASessionDoesNotStartWhatTheProgramTurnedOff) {
    write(entryIn(folders.configDirs[0]), entry());
    EXPECT_TRUE(wouldStart()) << output.toStdString();
    ASSERT_EQ(item().unregisterProgram(), std::nullopt);
    EXPECT_FALSE(wouldStart()) << output.toStdString();
}

}  // namespace
}  // namespace ferrowyn

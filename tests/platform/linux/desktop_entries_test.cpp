#include "platform/linux/desktop_entries.h"

#include <QEventLoop>
#include <QTimer>
#include <chrono>
#include <thread>

#include "platform/qt/qt_main_loop.h"
#include "tests/platform/linux/temporary_folder.h"

namespace ferrowyn {
namespace {

std::string entryText(const std::string& name, const std::string& more = "") {
    return "[Desktop Entry]\nType=Application\nName=" + name + "\n" + more;
}

class DesktopEntriesTest : public testing::Test {
protected:
    void write(const std::string& file, const std::string& text) const { folder.write(file, text); }
    [[nodiscard]] DesktopEntries make(const std::string& locale = "C") {
        return {mainLoop,
                {folder.path() / "config", folder.path() / "home", {folder.path() / "one", folder.path() / "two"}},
                locale};
    }
    static std::string nameOf(const DesktopEntries::EntryPtr& entry) { return entry ? entry->name : "(none)"; }
    /// Runs the loop until a change is told; false when none comes.
    static bool waitForChange(const DesktopEntries& entries) {
        QEventLoop loop;
        bool isTold = false;
        const auto subscription = entries.observeChanges([&] {
            isTold = true;
            loop.quit();
        });
        QTimer::singleShot(std::chrono::seconds(20), &loop, &QEventLoop::quit);
        loop.exec();
        return isTold;
    }

    TemporaryFolder folder;
    QtMainLoop mainLoop;
};

TEST_F(DesktopEntriesTest, FindsAnEntryByIdAndByPath) {
    write("one/applications/org.example.Editor.desktop", entryText("Editor"));
    write("one/applications/kde/clock.desktop", entryText("Clock"));
    const auto entries = make();
    EXPECT_EQ(nameOf(entries.byId("org.example.Editor")), "Editor");
    EXPECT_EQ(nameOf(entries.byId("org.example.Editor.desktop")), "Editor");
    EXPECT_EQ(nameOf(entries.byId("kde-clock")), "Clock");
    EXPECT_EQ(entries.byId("org.example.editor"), nullptr);
    const auto path = (folder.path() / "one/applications/org.example.Editor.desktop").string();
    ASSERT_NE(entries.byPath(path), nullptr);
    EXPECT_EQ(entries.byPath(path)->id, "org.example.Editor");
}

TEST_F(DesktopEntriesTest, TheUsersFolderHidesTheSystems) {
    write("home/applications/editor.desktop", entryText("Mine"));
    write("one/applications/editor.desktop", entryText("Theirs"));
    write("home/applications/gone.desktop", "[Desktop Entry]\nHidden=true\n");
    write("one/applications/gone.desktop", entryText("Gone", "StartupWMClass=Gone\n"));
    const auto entries = make();
    EXPECT_EQ(nameOf(entries.byId("editor")), "Mine");
    EXPECT_EQ(entries.byId("gone"), nullptr);
    EXPECT_EQ(entries.byWindowClass("gone", "Gone"), nullptr);
}

TEST_F(DesktopEntriesTest, NamesAreInTheUsersLanguage) {
    write("one/applications/clock.desktop", entryText("Clock", "Name[de]=Uhr\n"));
    EXPECT_EQ(nameOf(make("de_DE.UTF-8").byId("clock")), "Uhr");
}

TEST_F(DesktopEntriesTest, FindsTheApplicationOfAWindowClass) {
    write("one/applications/code.desktop", entryText("By class", "StartupWMClass=Code\nExec=/usr/bin/vscode\n"));
    write("one/applications/xterm.desktop", entryText("By id"));
    write("one/applications/org.gnome.Nautilus.desktop", entryText("By component"));
    write("one/applications/tool.desktop", entryText("By program", "Exec=env X=1 /opt/thetool\n"));
    write("one/applications/some-program.desktop", entryText("With a dash"));
    write("one/applications/script.desktop", entryText("Script", "Exec=python3 x.py\n"));
    const auto entries = make();
    EXPECT_EQ(nameOf(entries.byWindowClass("code", "Code")), "By class");
    EXPECT_EQ(nameOf(entries.byWindowClass("whatever", "CODE")), "By class");
    EXPECT_EQ(nameOf(entries.byWindowClass("Code", "whatever")), "By class");
    EXPECT_EQ(nameOf(entries.byWindowClass("xterm", "XTerm")), "By id");
    EXPECT_EQ(nameOf(entries.byWindowClass("nautilus", "Nautilus")), "By component");
    EXPECT_EQ(nameOf(entries.byWindowClass("thetool", "TheTool")), "By program");
    EXPECT_EQ(nameOf(entries.byWindowClass("", "Some Program")), "With a dash");
    EXPECT_EQ(entries.byWindowClass("python3", "Python3"), nullptr);
    EXPECT_EQ(entries.byWindowClass("", ""), nullptr);
}

TEST_F(DesktopEntriesTest, ExactCaseComesFirstAndMenuEntriesBeforeHiddenOnes) {
    write("one/applications/a.desktop", entryText("Lower", "StartupWMClass=app\n"));
    write("one/applications/b.desktop", entryText("Upper", "StartupWMClass=App\n"));
    write("one/applications/c.desktop", entryText("Helper", "StartupWMClass=Suite\nNoDisplay=true\n"));
    write("one/applications/d.desktop", entryText("Suite", "StartupWMClass=Suite\n"));
    write("one/applications/e.desktop", entryText("Only helper", "StartupWMClass=Lonely\nNoDisplay=true\n"));
    const auto entries = make();
    EXPECT_EQ(nameOf(entries.byWindowClass("", "app")), "Lower");
    EXPECT_EQ(nameOf(entries.byWindowClass("", "App")), "Upper");
    EXPECT_EQ(nameOf(entries.byWindowClass("", "Suite")), "Suite");
    EXPECT_EQ(nameOf(entries.byWindowClass("", "Lonely")), "Only helper");
}

TEST_F(DesktopEntriesTest, NoticesWhatIsInstalledAndRemoved) {
    write("one/applications/a.desktop", entryText("A"));
    const auto entries = make();
    EXPECT_EQ(entries.byId("b"), nullptr);
    const auto held = entries.byId("a");
    write("one/applications/b.desktop", entryText("B"));
    std::filesystem::remove(folder.path() / "one/applications/a.desktop");
    ASSERT_TRUE(waitForChange(entries));
    EXPECT_EQ(nameOf(entries.byId("b")), "B");
    EXPECT_EQ(entries.byId("a"), nullptr);
    EXPECT_EQ(nameOf(held), "A");
}

TEST_F(DesktopEntriesTest, NoticesAFolderThatWasNotThere) {
    const auto entries = make();
    EXPECT_EQ(entries.byId("a"), nullptr);
    write("home/applications/a.desktop", entryText("A"));
    ASSERT_TRUE(waitForChange(entries));
    EXPECT_EQ(nameOf(entries.byId("a")), "A");
}

TEST_F(DesktopEntriesTest, AnswersOnEveryThread) {
    write("one/applications/a.desktop", entryText("A"));
    const auto entries = make();
    std::vector<std::thread> threads;
    std::atomic<int> found = 0;
    for (int thread = 0; thread < 4; ++thread) {
        threads.emplace_back([&] { found += entries.byId("a") != nullptr ? 1 : 0; });
    }
    for (auto& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(found, 4);
}

}  // namespace
}  // namespace ferrowyn

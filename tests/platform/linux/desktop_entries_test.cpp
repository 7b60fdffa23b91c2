#include <QEventLoop>
#include <QTimer>
#include <array>
#include <chrono>
#include <thread>

#include "platform/linux/desktop_entries.h"
#include "platform/linux/desktop_entry.h"
#include "platform/linux/desktop_file.h"
#include "platform/qt/qt_main_loop.h"
#include "tests/platform/linux/temporary_folder.h"

namespace ferrowyn {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Optional;

TEST(DesktopFileTextTest, QuotesAnArgumentOnlyWhereTheRulesAskForIt) {
    using desktop_file::quotedArgument;
    EXPECT_EQ(quotedArgument("/usr/bin/ferrowyn"), "/usr/bin/ferrowyn");
    EXPECT_EQ(quotedArgument("/opt/My Programs/ferrowyn"), R"("/opt/My Programs/ferrowyn")");
    EXPECT_EQ(quotedArgument(R"(/a"b`c$d\e)"), R"("/a\"b\`c\$d\\e")");
    EXPECT_EQ(quotedArgument("/50%"), "/50%%");
    EXPECT_EQ(quotedArgument("/it's"), R"("/it's")");
    EXPECT_EQ(quotedArgument(""), R"("")");
}

TEST(DesktopFileTextTest, EveryArgumentComesBackAsItWas) {
    for (const std::string argument : {"/usr/bin/ferrowyn", "/a b/c", R"(/"'\`$<>~|&;*?#())", "/tab\there",
                                       "/line\nbreak", "/%f/%%/100%", "/ünïcode", " /blank/first", R"(/ends\)"}) {
        const auto value = desktop_file::escaped(desktop_file::quotedArgument(argument));
        EXPECT_EQ(value.find('\n'), std::string::npos) << argument;
        const auto arguments = desktop_file::splitExec(desktop_file::unescaped(value));
        ASSERT_TRUE(arguments) << argument;
        EXPECT_THAT(*arguments, ElementsAre(argument));
    }
}

TEST(DesktopFileTextTest, SplitsACommandLineIntoItsArguments) {
    using desktop_file::splitExec;
    EXPECT_THAT(splitExec(R"(sh -c "sleep 5; \"x y\"" %U --done)"),
                Optional(ElementsAre("sh", "-c", R"(sleep 5; "x y")", "--done")));
    EXPECT_THAT(splitExec("  a   b%%c  "), Optional(ElementsAre("a", "b%c")));
    EXPECT_THAT(splitExec(""), Optional(IsEmpty()));
    EXPECT_EQ(splitExec(R"(sh -c "open)"), std::nullopt);
}

constexpr const char* handWritten =
    "# Mine\n"
    "\n"
    "[Desktop Entry]\n"
    "Name = Ferrowyn \n"
    "Name[de]=Ferrowyn!\n"
    "Exec=first\n"
    "# why not\n"
    "Exec=a\\sb\\\\c\n"
    "\n"
    "[Desktop Action New]\n"
    "Exec=other\n"
    "Hidden=true\n";

TEST(DesktopFileDocumentTest, ReadsTheEntrysOwnKeys) {
    const auto document = DesktopFileDocument::parse(handWritten);
    ASSERT_TRUE(document);
    EXPECT_EQ(document->value("Name"), "Ferrowyn");
    EXPECT_EQ(document->value("Exec"), R"(a b\c)");
    EXPECT_EQ(document->value("Hidden"), std::nullopt) << "which belongs to an action";
    EXPECT_EQ(document->text(), handWritten);
}

TEST(DesktopFileDocumentTest, AChangeLeavesEverythingElseAsItWas) {
    auto document = *DesktopFileDocument::parse(handWritten);
    document.set("Exec", "c d\\");
    document.set("Hidden", "true");
    document.set("Name", "Ferrowyn");
    document.remove("Comment");
    EXPECT_EQ(document.text(),
              "# Mine\n\n[Desktop Entry]\nName = Ferrowyn \nName[de]=Ferrowyn!\nExec=first\n# why not\nExec=c d\\\\\n"
              "Hidden=true\n\n[Desktop Action New]\nExec=other\nHidden=true\n");
    document.remove("Exec");
    EXPECT_EQ(document.value("Exec"), std::nullopt);
    EXPECT_EQ(document.value("Name"), "Ferrowyn");
}

TEST(DesktopFileDocumentTest, ReadsBooleansAndLists) {
    const auto document =
        *DesktopFileDocument::parse("[Desktop Entry]\nA=true\nB=1\nC=false\nD=yes\nL=GNOME;;X-Y;\nE=\n");
    EXPECT_EQ(document.boolean("A"), true);
    EXPECT_EQ(document.boolean("B"), true);
    EXPECT_EQ(document.boolean("C"), false);
    EXPECT_EQ(document.boolean("D"), false);
    EXPECT_EQ(document.boolean("None"), std::nullopt);
    EXPECT_THAT(document.list("L"), Optional(ElementsAre("GNOME", "X-Y")));
    EXPECT_THAT(document.list("E"), Optional(IsEmpty()));
    EXPECT_EQ(document.list("None"), std::nullopt);
}

TEST(DesktopFileDocumentTest, KnowsWhatIsNoDesktopFile) {
    EXPECT_FALSE(DesktopFileDocument::parse(""));
    EXPECT_FALSE(DesktopFileDocument::parse("Exec=x\n"));
    EXPECT_FALSE(DesktopFileDocument::parse("[Desktop Entry]\nName=\xFF\n"));
    EXPECT_FALSE(DesktopFileDocument::parse(std::string("[Desktop Entry]\n\0", 17)));
    EXPECT_TRUE(DesktopFileDocument::parse("[Desktop Entry]"));
}

TEST(DesktopFileDocumentTest, TellsItsOwnEntriesFromWhatAPersonAdded) {
    constexpr std::array<std::string_view, 2> keys{"Name", "Exec"};
    const auto holdsOnly = [&](const char* text) { return DesktopFileDocument::parse(text)->holdsOnly(keys); };
    EXPECT_TRUE(holdsOnly("[Desktop Entry]\nName=a\n\nExec=b\n"));
    EXPECT_TRUE(holdsOnly("[Desktop Entry]\n"));
    EXPECT_FALSE(holdsOnly("[Desktop Entry]\nName=a\nComment=mine\n"));
    EXPECT_FALSE(holdsOnly("[Desktop Entry]\nName=a\nName[de]=b\n"));
    EXPECT_FALSE(holdsOnly("[Desktop Entry]\nName=a\nName=b\n"));
    EXPECT_FALSE(holdsOnly("# mine\n[Desktop Entry]\nName=a\n"));
    EXPECT_FALSE(holdsOnly("[Desktop Entry]\nName=a\n[Desktop Action X]\nName=a\n"));
}

TEST(LocaleVariants, TriesTheMostSpecificFirst) {
    EXPECT_THAT(localeVariants("de_AT.UTF-8@euro"), ElementsAre("de_AT@euro", "de_AT", "de@euro", "de"));
    EXPECT_THAT(localeVariants("de_AT.UTF-8"), ElementsAre("de_AT", "de"));
    EXPECT_THAT(localeVariants("sr@latin"), ElementsAre("sr@latin", "sr"));
    EXPECT_THAT(localeVariants("de"), ElementsAre("de"));
    for (const auto* none : {"", "C", "C.UTF-8", "POSIX"}) {
        EXPECT_THAT(localeVariants(none), IsEmpty()) << none;
    }
}

constexpr const char* editor =
    "# a comment\n"
    "[Desktop Entry]\n"
    "Type=Application\n"
    "Name=Editor\n"
    "Name[fr]=Éditeur\n"
    "Name[de]=Bearbeiter\n"
    "Name[de_AT] = Schreiber \n"
    "Icon=accessories-text-editor\n"
    "StartupWMClass=Ed\n"
    "Exec=/usr/bin/editor --new %U\n"
    "[Desktop Action new]\n"
    "Name=New Window\n"
    "Exec=other\n"
    "Icon=other\n";

TEST(DesktopEntryText, ReadsTheEntryAndNotItsActions) {
    const auto entry = parseDesktopEntry(editor, {});
    ASSERT_TRUE(entry);
    EXPECT_EQ(entry->name, "Editor");
    EXPECT_EQ(entry->icon, "accessories-text-editor");
    EXPECT_EQ(entry->startupWmClass, "Ed");
    EXPECT_EQ(entry->executable, "editor");
    EXPECT_FALSE(entry->noDisplay);
    EXPECT_FALSE(entry->isHidden);
}

TEST(DesktopEntryText, TakesTheBestNameWhateverTheOrder) {
    EXPECT_EQ(parseDesktopEntry(editor, {"de_AT", "de"})->name, "Schreiber");
    EXPECT_EQ(parseDesktopEntry(editor, {"de_CH", "de"})->name, "Bearbeiter");
    EXPECT_EQ(parseDesktopEntry(editor, {"it"})->name, "Editor");
    EXPECT_EQ(parseDesktopEntry("[Desktop Entry]\nName[de]=Uhr\nName=Clock\nType=Application\n", {"de"})->name, "Uhr");
}

TEST(DesktopEntryText, UnderstandsEscapesFlagsAndForeignLineEnds) {
    const auto entry = parseDesktopEntry(
        "[Desktop Entry]\r\nType=Application\r\nName=A\\sB\\\\C\r\nNoDisplay=true\r\nHidden=false\r\n", {});
    ASSERT_TRUE(entry);
    EXPECT_EQ(entry->name, "A B\\C");
    EXPECT_TRUE(entry->noDisplay);
    EXPECT_FALSE(entry->isHidden);
}

TEST(DesktopEntryText, FindsTheProgramBehindItsCommandLine) {
    const auto executable = [](const std::string& exec) {
        return parseDesktopEntry("[Desktop Entry]\nType=Application\nName=x\nExec=" + exec + "\n", {})->executable;
    };
    EXPECT_EQ(executable("firefox %u"), "firefox");
    EXPECT_EQ(executable("/opt/x/firefox"), "firefox");
    EXPECT_EQ(executable("env A=b LANG=C /usr/bin/gimp %U"), "gimp");
    EXPECT_EQ(executable("\"/opt/Some Program/run it\" --x"), "run it");
    EXPECT_EQ(executable(""), "");
    EXPECT_EQ(executable("env"), "");
}

TEST(DesktopEntryText, OtherFilesAreNoApplications) {
    EXPECT_FALSE(parseDesktopEntry("", {}));
    EXPECT_FALSE(parseDesktopEntry("[Desktop Entry]\nType=Link\nName=x\n", {}));
    EXPECT_FALSE(parseDesktopEntry("[Desktop Entry]\nType=Application\n", {}));
    EXPECT_FALSE(parseDesktopEntry("Type=Application\nName=x\n", {}));
    EXPECT_FALSE(parseDesktopEntry(std::string("\0\xFF[=]", 5), {}));
}

TEST(DesktopEntryText, ADeletedEntryNeedsNoName) {
    const auto entry = parseDesktopEntry("[Desktop Entry]\nHidden=true\n", {});
    ASSERT_TRUE(entry);
    EXPECT_TRUE(entry->isHidden);
}

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

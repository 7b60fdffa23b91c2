#include "platform/linux/desktop_entry.h"

namespace ferrowyn {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

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

}  // namespace
}  // namespace ferrowyn

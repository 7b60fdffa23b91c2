#include <array>

#include "platform/linux/desktop_file.h"

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

}  // namespace
}  // namespace ferrowyn

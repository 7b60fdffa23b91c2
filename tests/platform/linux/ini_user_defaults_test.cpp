#include "platform/linux/ini_user_defaults.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <limits>
#include <mutex>
#include <string>
#include <vector>

#include "platform/linux/atomic_file.h"
#include "platform/log.h"
#include "tests/platform/linux/temporary_folder.h"
#include "tests/platform/recorded_log.h"

namespace ferrowyn {
namespace {

namespace fs = std::filesystem;
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

class IniUserDefaultsTest : public testing::Test {
protected:
    [[nodiscard]] std::optional<DefaultsValue> storedValue(const std::string& key) {
        return IniUserDefaults(file, log).value(key);
    }
    void store(const std::string& key, DefaultsValue value) { IniUserDefaults(file, log).set(key, std::move(value)); }
    void writeFile(const std::string& content) { folder.write("config/Ferrowyn/Ferrowyn.ini", content); }
    [[nodiscard]] std::string fileContent() const { return TemporaryFolder::read(file); }
    [[nodiscard]] std::vector<std::string> filesBeside() const {
        std::vector<std::string> names;
        for (const auto& entry : fs::directory_iterator(file.parent_path())) {
            names.push_back(entry.path().filename());
        }
        std::ranges::sort(names);
        return names;
    }

    TemporaryFolder folder;
    RecordedLog log;
    fs::path file = folder.path() / "config/Ferrowyn/Ferrowyn.ini";
};

TEST_F(IniUserDefaultsTest, StartsEmptyWithoutAFileAndMakesNone) {
    {
        const IniUserDefaults defaults(file, log);
        EXPECT_EQ(defaults.value("a.b"), std::nullopt);
    }
    EXPECT_FALSE(fs::exists(file));
    EXPECT_THAT(log.errors(), IsEmpty());
}

TEST_F(IniUserDefaultsTest, RegisteredDefaultsAnswerForAbsentKeysAndAreNeverStored) {
    {
        IniUserDefaults defaults(file, log);
        defaults.registerDefaults({{"switcher.layout", std::string("list")}, {"switcher.rows", std::int64_t{9}}});
        EXPECT_EQ(defaults.string("switcher.layout"), "list");
        defaults.set("switcher.layout", std::string("grid"));
        EXPECT_EQ(defaults.string("switcher.layout"), "grid");
        EXPECT_EQ(defaults.integer("switcher.rows"), 9);
    }
    EXPECT_EQ(fileContent(), "[switcher]\nlayout=\"grid\"\n");
}

TEST_F(IniUserDefaultsTest, EveryTypeComesBackAsItWas) {
    const std::vector<DefaultsValue> values{
        true,
        false,
        std::int64_t{0},
        std::numeric_limits<std::int64_t>::min(),
        std::numeric_limits<std::int64_t>::max(),
        1.0,
        0.1,
        -1.5e300,
        1760000000.123456,
        std::string(),
        std::string("option"),
        std::string("true"),
        std::string("42"),
        std::string("1.5"),
        std::string("[\"a\"]"),
        std::string("  spaces at both ends  "),
        std::string("quote \" backslash \\ newline \n return \r tab \t"),
        std::string("null \0 inside", 13),
        std::string("semicolon ; hash # equals = bracket ]"),
        std::string("é 日本語 👩‍👩‍👧 \u2028"),
        std::string("not UTF-8: \xFF\xFE"),
        std::vector<std::string>{},
        std::vector<std::string>{""},
        std::vector<std::string>{"a,b", "c\"d", "e\nf", "g\\", "日本", "]", "true", " "},
    };
    for (std::size_t at = 0; at < values.size(); ++at) {
        store("test.value", values[at]);
        EXPECT_EQ(storedValue("test.value"), values[at]) << "value " << at << " in\n" << fileContent();
    }
    EXPECT_THAT(log.errors(), IsEmpty());
}

TEST_F(IniUserDefaultsTest, EveryKeyComesBackAsItWas) {
    const std::vector<std::string> keys{"a",     "a.b", "a.b.c", ".a",  "a.",  "",   "a b.c d", "x=y",
                                        "[x].y", "#k",  ";k",    "é.ü", "k\n", "\"", "A.b"};
    {
        IniUserDefaults defaults(file, log);
        for (const auto& key : keys) {
            defaults.set(key, "value of " + key);
        }
    }
    const IniUserDefaults defaults(file, log);
    for (const auto& key : keys) {
        EXPECT_EQ(defaults.string(key), "value of " + key) << fileContent();
    }
    EXPECT_THAT(log.errors(), IsEmpty());
}

TEST_F(IniUserDefaultsTest, IsOnTheDiskWhileTheProgramStillRuns) {
    IniUserDefaults defaults(file, log);
    defaults.set("switcher.layout", std::string("grid"));
    defaults.flush();
    EXPECT_THAT(fileContent(), HasSubstr("layout=\"grid\""));
}

TEST_F(IniUserDefaultsTest, QuickWritesLoseNothing) {
    {
        IniUserDefaults defaults(file, log);
        for (std::int64_t number = 0; number < 500; ++number) {
            defaults.set("test.key" + std::to_string(number % 50), number);
        }
    }
    const IniUserDefaults defaults(file, log);
    for (std::int64_t key = 0; key < 50; ++key) {
        EXPECT_EQ(defaults.integer("test.key" + std::to_string(key)), 450 + key);
    }
    EXPECT_THAT(filesBeside(), ElementsAre("Ferrowyn.ini"));
}

TEST_F(IniUserDefaultsTest, KeepsCommentsUnknownEntriesAndTheirOrder) {
    writeFile(
        "; my settings\n\n[other]\nz = 1\n\n[switcher]\n# how it looks\nlayout = grid\nunknown=x y\n\n[updates]\n"
        "automatic=false\n");
    store("switcher.modifier", std::string("command"));
    EXPECT_EQ(fileContent(),
              "; my settings\n\n[other]\nz = 1\n\n[switcher]\n# how it looks\nlayout = grid\nunknown=x y\n"
              "modifier=\"command\"\n\n[updates]\nautomatic=false\n");
    EXPECT_EQ(storedValue("switcher.layout"), DefaultsValue(std::string("grid")));
    EXPECT_EQ(storedValue("updates.automatic"), DefaultsValue(false));
}

TEST_F(IniUserDefaultsTest, WhatOthersWriteWhileTheProgramRunsSurvivesAChangeOfAnotherKey) {
    IniUserDefaults defaults(file, log);
    defaults.set("switcher.layout", std::string("grid"));
    defaults.flush();
    writeFile("[switcher]\nlayout=\"list\"\nmodifier=\"control\"\n");
    defaults.set("updates.automatic", false);
    defaults.flush();
    EXPECT_EQ(storedValue("switcher.modifier"), DefaultsValue(std::string("control")));
    EXPECT_EQ(storedValue("switcher.layout"), DefaultsValue(std::string("list")));
    EXPECT_EQ(storedValue("updates.automatic"), DefaultsValue(false));
}

TEST_F(IniUserDefaultsTest, ReadsFilesOfOtherSystems) {
    writeFile("\xEF\xBB\xBF[switcher]\r\nlayout=\"grid\"\r\n\r\nrows = 12 \r\n");
    const IniUserDefaults defaults(file, log);
    EXPECT_EQ(defaults.string("switcher.layout"), "grid");
    EXPECT_EQ(defaults.integer("switcher.rows"), 12);
}

TEST_F(IniUserDefaultsTest, KeepsADamagedFileAsideAndStartsWithTheDefaults) {
    const std::vector<std::string> damaged{
        std::string("[switcher]\nlayout=\"grid\"\n\0\0\0", 28),
        "no entry at all\n",
        "[switcher\n",
        "[s]\nlayout=\"cut of",
        "[s]\nlist=[\"a\", \"b\n",
        "[s]\nx=\"\xC3\x28\"\n",
        "=x\n",
        "[s]\nlayout=\"grid\" extra\n",
    };
    for (const auto& content : damaged) {
        writeFile(content);
        const auto asideCount = log.errors().size();
        IniUserDefaults defaults(file, log);
        defaults.registerDefaults({{"switcher.layout", std::string("list")}});
        EXPECT_EQ(defaults.string("switcher.layout"), "list") << content;
        EXPECT_FALSE(fs::exists(file)) << content;
        const auto aside =
            asideCount == 0 ? "Ferrowyn.ini.damaged" : "Ferrowyn.ini.damaged-" + std::to_string(asideCount + 1);
        EXPECT_EQ(TemporaryFolder::read(file.parent_path() / aside), content);
        ASSERT_THAT(log.errors(), SizeIs(asideCount + 1));
        EXPECT_THAT(log.errors().back(), AllOf(HasSubstr("cannot be read"), HasSubstr(aside)));
    }
}

TEST_F(IniUserDefaultsTest, AFileDamagedWhileTheProgramRunsCostsNothing) {
    IniUserDefaults defaults(file, log);
    defaults.set("switcher.layout", std::string("grid"));
    defaults.flush();
    writeFile("what is this");
    defaults.set("updates.automatic", false);
    defaults.flush();
    EXPECT_EQ(fileContent(), "[switcher]\nlayout=\"grid\"\n\n[updates]\nautomatic=false\n");
    EXPECT_THAT(filesBeside(), ElementsAre("Ferrowyn.ini", "Ferrowyn.ini.damaged"));
}

TEST_F(IniUserDefaultsTest, AnUnwritableFolderIsReportedOnceAndTheValuesStayInMemory) {
    // A file where the folder should be: not even root can write there.
    folder.write("config", "in the way");
    IniUserDefaults defaults(file, log);
    for (int time = 0; time < 3; ++time) {
        defaults.set("switcher.layout", std::string("grid"));
        defaults.flush();
    }
    EXPECT_EQ(defaults.string("switcher.layout"), "grid");
    EXPECT_THAT(log.errors(), ElementsAre(HasSubstr("cannot be stored")));
}

TEST_F(IniUserDefaultsTest, WhatCouldNotBeStoredIsStoredWithTheNextChange) {
    folder.write("config", "in the way");
    IniUserDefaults defaults(file, log);
    defaults.set("switcher.layout", std::string("grid"));
    defaults.flush();
    fs::remove(folder.path() / "config");
    defaults.set("updates.automatic", false);
    defaults.flush();
    EXPECT_EQ(fileContent(), "[switcher]\nlayout=\"grid\"\n\n[updates]\nautomatic=false\n");
}

TEST_F(IniUserDefaultsTest, AFolderInPlaceOfTheFileIsKeptAside) {
    fs::create_directories(file);
    store("a.b", true);
    EXPECT_EQ(storedValue("a.b"), DefaultsValue(true));
    EXPECT_THAT(filesBeside(), ElementsAre("Ferrowyn.ini", "Ferrowyn.ini.damaged"));
}

TEST_F(IniUserDefaultsTest, FollowsALinkAndKeepsPermissions) {
    const auto target = folder.write("dotfiles/ferrowyn.ini", "[switcher]\nlayout=\"grid\"\n");
    fs::permissions(target, fs::perms::owner_read | fs::perms::owner_write | fs::perms::group_read);
    fs::create_directories(file.parent_path());
    fs::create_symlink(target, file);
    store("switcher.layout", std::string("list"));
    EXPECT_TRUE(fs::is_symlink(file));
    EXPECT_EQ(TemporaryFolder::read(target), "[switcher]\nlayout=\"list\"\n");
    EXPECT_EQ(fs::status(target).permissions(), fs::perms::owner_read | fs::perms::owner_write | fs::perms::group_read);
}

/// Not with a device: were this to fail, root would lose it.
TEST_F(IniUserDefaultsTest, OnlyARegularFileIsWritten) {
    const auto pipe = folder.path() / "pipe";
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    fs::create_directories(file.parent_path());
    fs::create_symlink(pipe, file);
    {
        IniUserDefaults defaults(file, log);
        EXPECT_EQ(defaults.value("switcher.layout"), std::nullopt);
        for (const char* layout : {"grid", "list"}) {
            defaults.set("switcher.layout", std::string(layout));
            defaults.flush();
        }
        EXPECT_EQ(defaults.string("switcher.layout"), "list") << "in memory";
    }
    EXPECT_TRUE(fs::is_symlink(file));
    EXPECT_TRUE(fs::is_fifo(pipe));
    EXPECT_THAT(filesBeside(), ElementsAre("Ferrowyn.ini"));
    EXPECT_THAT(log.errors(), ElementsAre(AllOf(HasSubstr("cannot be read"), HasSubstr("not a regular file")),
                                          AllOf(HasSubstr("cannot be stored"), HasSubstr("not a regular file"))));
}

TEST_F(IniUserDefaultsTest, APipeInPlaceOfTheFileStays) {
    fs::create_directories(file.parent_path());
    ASSERT_EQ(::mkfifo(file.c_str(), 0600), 0);
    store("switcher.layout", std::string("grid"));
    EXPECT_TRUE(fs::is_fifo(file));
    EXPECT_THAT(filesBeside(), ElementsAre("Ferrowyn.ini"));
}

TEST_F(IniUserDefaultsTest, ALinkToNothingYetIsFilled) {
    const auto target = folder.path() / "dotfiles/ferrowyn.ini";
    fs::create_directories(file.parent_path());
    fs::create_symlink(target, file);
    store("switcher.layout", std::string("grid"));
    EXPECT_TRUE(fs::is_symlink(file));
    EXPECT_EQ(TemporaryFolder::read(target), "[switcher]\nlayout=\"grid\"\n");
}

TEST_F(IniUserDefaultsTest, CleansUpAfterWritersThatWereKilledAndOnlyAfterThem) {
    const auto target = folder.write("dotfiles/ferrowyn.ini", "[switcher]\nlayout=\"grid\"\n");
    fs::create_directories(file.parent_path());
    fs::create_symlink(target, file);
    const auto writing = folder.write("dotfiles/ferrowyn.ini.unfinished-Ab3dE6", "[switcher]\nlay");
    folder.write("dotfiles/ferrowyn.ini.unfinished-ZZZZZZ", "");
    for (const char* foreign : {"ferrowyn.ini.backup", "ferrowyn.ini.unfinished-", "ferrowyn.ini.unfinished-notes.txt",
                                "other.ini.unfinished-Ab3dE6", "ferrowyn.ini.damaged"}) {
        folder.write(fs::path("dotfiles") / foreign, "");
    }
    const auto names = [&] {
        std::vector<std::string> found;
        for (const auto& entry : fs::directory_iterator(target.parent_path())) {
            found.push_back(entry.path().filename());
        }
        std::ranges::sort(found);
        return found;
    };
    // Another process still writes that one.
    const int descriptor = ::open(writing.c_str(), O_WRONLY | O_CLOEXEC);
    ASSERT_EQ(::flock(descriptor, LOCK_EX), 0);
    EXPECT_EQ(storedValue("switcher.layout"), DefaultsValue(std::string("grid")));
    EXPECT_THAT(names(), ElementsAre("ferrowyn.ini", "ferrowyn.ini.backup", "ferrowyn.ini.damaged",
                                     "ferrowyn.ini.unfinished-", "ferrowyn.ini.unfinished-Ab3dE6",
                                     "ferrowyn.ini.unfinished-notes.txt", "other.ini.unfinished-Ab3dE6"));
    ::close(descriptor);
    EXPECT_EQ(storedValue("switcher.layout"), DefaultsValue(std::string("grid")));
    EXPECT_FALSE(fs::exists(writing)) << "its writer has gone";
    EXPECT_THAT(log.errors(), IsEmpty());
}

TEST_F(IniUserDefaultsTest, WhatAKilledWriterLeavesIsFoundAtTheNextStart) {
    writeFile("[switcher]\nlayout=\"grid\"\n");
    const pid_t writer = ::fork();
    ASSERT_GE(writer, 0);
    if (writer == 0) {
        // The first byte beyond the limit kills, in the middle of the temporary file.
        const rlimit noCore{0, 0};
        const rlimit limit{100, 100};
        ::setrlimit(RLIMIT_CORE, &noCore);
        ::setrlimit(RLIMIT_FSIZE, &limit);
        static_cast<void>(replaceFile(file, std::string(1000, 'x')));
        ::_exit(0);
    }
    int status = 0;
    ASSERT_EQ(::waitpid(writer, &status, 0), writer);
    ASSERT_TRUE(WIFSIGNALED(status)) << status;
    ASSERT_THAT(filesBeside(), SizeIs(2));
    EXPECT_EQ(storedValue("switcher.layout"), DefaultsValue(std::string("grid")));
    EXPECT_THAT(filesBeside(), ElementsAre("Ferrowyn.ini"));
}

TEST_F(IniUserDefaultsTest, LineEndsSurviveAChange) {
    writeFile("; of another system\r\n[switcher]\r\nlayout=grid\r\nrows=9\r\r\r\n\r\r\n[updates]\r\n");
    for (const char* layout : {"list", "grid", "list"}) {
        store("switcher.layout", std::string(layout));
    }
    store("updates.automatic", false);
    EXPECT_EQ(fileContent(),
              "; of another system\r\n[switcher]\r\nlayout=\"list\"\r\nrows=9\r\r\r\n\r\r\n[updates]\r\n"
              "automatic=false\r\n");
    EXPECT_EQ(storedValue("switcher.rows"), DefaultsValue(std::int64_t{9}));
}

TEST_F(IniUserDefaultsTest, MakesItsFolderForTheUserAlone) {
    store("a.b", true);
    EXPECT_EQ(fs::status(file.parent_path()).permissions(), fs::perms::owner_all);
}

}  // namespace
}  // namespace ferrowyn

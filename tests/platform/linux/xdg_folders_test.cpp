#include "platform/linux/xdg_folders.h"

#include <cstdlib>
#include <map>
#include <optional>

namespace ferrowyn {
namespace {

using testing::ElementsAre;

class XdgFoldersTest : public testing::Test {
protected:
    XdgFoldersTest() {
        for (const char* name : {"HOME", "XDG_CONFIG_HOME", "XDG_CONFIG_DIRS", "XDG_DATA_HOME", "XDG_DATA_DIRS"}) {
            const char* value = std::getenv(name);
            before_[name] = value == nullptr ? std::nullopt : std::optional<std::string>(value);
            unsetenv(name);
        }
        setenv("HOME", "/home/someone", 1);
    }
    ~XdgFoldersTest() override {
        for (const auto& [name, value] : before_) {
            value ? setenv(name.c_str(), value->c_str(), 1) : unsetenv(name.c_str());
        }
    }

private:
    std::map<std::string, std::optional<std::string>> before_;
};

TEST_F(XdgFoldersTest, FallsBackToTheUsualPlaces) {
    const auto folders = XdgFolders::fromEnvironment();
    EXPECT_EQ(folders.configHome, "/home/someone/.config");
    EXPECT_THAT(folders.configDirs, ElementsAre("/etc/xdg"));
    EXPECT_THAT(folders.allDataDirs(), ElementsAre("/home/someone/.local/share", "/usr/local/share", "/usr/share"));
}

TEST_F(XdgFoldersTest, FollowsTheEnvironmentAndIgnoresRelativePaths) {
    setenv("XDG_CONFIG_HOME", "/c", 1);
    setenv("XDG_CONFIG_DIRS", "/etc/first:relative:/etc/second", 1);
    setenv("XDG_DATA_HOME", "relative", 1);
    setenv("XDG_DATA_DIRS", "/one::also/relative:/two", 1);
    const auto folders = XdgFolders::fromEnvironment();
    EXPECT_EQ(folders.configHome, "/c");
    EXPECT_THAT(folders.configDirs, ElementsAre("/etc/first", "/etc/second"));
    EXPECT_THAT(folders.allDataDirs(), ElementsAre("/home/someone/.local/share", "/one", "/two"));
}

}  // namespace
}  // namespace ferrowyn

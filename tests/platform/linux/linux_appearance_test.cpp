#include "platform/linux/linux_appearance.h"

#include <QCoreApplication>
#include <QProcess>
#include <QTimer>
#include <chrono>
#include <filesystem>
#include <functional>

#include "platform/qt/qt_main_loop.h"
#include "tests/platform/linux/fake_settings_portal.h"
#include "tests/platform/linux/restartable_bus.h"
#include "tests/platform/linux/temporary_folder.h"

namespace ferrowyn {
namespace {

namespace fs = std::filesystem;

/// Runs the loop until the condition holds; false when it never does.
bool waitUntil(const std::function<bool()>& condition) {
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    QTimer wake;
    wake.start(std::chrono::milliseconds(200));
    while (!condition()) {
        if (std::chrono::steady_clock::now() > deadline) {
            return false;
        }
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
    return true;
}

class LinuxAppearanceTest : public testing::Test {
protected:
    [[nodiscard]] LinuxAppearance::Options options(const std::string& currentDesktop = "XFCE") const {
        LinuxAppearance::Options result;
        result.folders.configHome = folder.path();
        result.currentDesktop = currentDesktop;
        return result;
    }
    /// As a person's editor does that writes into the file itself.
    void writeInPlace(const std::string& file, const std::string& text) const { folder.write(file, text); }
    /// As KDE does.
    void replace(const std::string& file, const std::string& text) const {
        folder.write(file + ".new", text);
        fs::rename(folder.path() / (file + ".new"), folder.path() / file);
    }

    TemporaryFolder folder;
    QtMainLoop mainLoop;
};

// --- files

TEST_F(LinuxAppearanceTest, ReadsPlasmasColors) {
    writeInPlace("kdeglobals",
                 "[Colors:View]\nBackgroundNormal=1,2,3\n\n[Colors:Window]\nForegroundNormal=9,9,9\n"
                 "BackgroundNormal=32,35,38\n[Colors:Header][Inactive]\nBackgroundNormal=4,5,6\n"
                 "[Colors:Selection]\nBackgroundNormal=61,174,233\n");
    const LinuxAppearance appearance(mainLoop, options("ubuntu:KDE"));
    const auto& sources = appearance.sources().get();
    EXPECT_TRUE(sources.isPlasma);
    EXPECT_EQ(sources.plasmaWindow, (RgbColor{32, 35, 38}));
    EXPECT_EQ(sources.plasmaAccent, (RgbColor{61, 174, 233}));
}

TEST_F(LinuxAppearanceTest, AChosenAccentWinsOverTheColorOfSelections) {
    writeInPlace("kdeglobals", "[General]\nAccentColor=233,84,32\n[Colors:Selection]\nBackgroundNormal=61,174,233\n");
    EXPECT_EQ(LinuxAppearance(mainLoop, options("KDE")).sources().get().plasmaAccent, (RgbColor{233, 84, 32}));
}

TEST_F(LinuxAppearanceTest, DamagedColorsAreNone) {
    for (const char* value : {"", "1,2", "1,2,300", "a,b,c", "#202224", "1;2;3"}) {
        writeInPlace("kdeglobals", std::string("[Colors:Window]\nBackgroundNormal=") + value + "\n");
        EXPECT_EQ(LinuxAppearance(mainLoop, options("KDE")).sources().get().plasmaWindow, std::nullopt) << value;
    }
}

TEST_F(LinuxAppearanceTest, FollowsPlasmasColorsWhenTheirFileIsReplacedOrWritten) {
    const LinuxAppearance appearance(mainLoop, options("KDE"));
    const auto window = [&] { return appearance.sources().get().plasmaWindow; };
    EXPECT_EQ(window(), std::nullopt);
    for (int round = 1; round <= 3; ++round) {
        const auto red = static_cast<std::uint8_t>(round);
        replace("kdeglobals", "[Colors:Window]\nBackgroundNormal=" + std::to_string(round) + ",0,0\n");
        EXPECT_TRUE(waitUntil([&] { return window() == RgbColor{red, 0, 0}; })) << round;
        writeInPlace("kdeglobals", "[Colors:Window]\nBackgroundNormal=" + std::to_string(round) + ",9,9\n");
        EXPECT_TRUE(waitUntil([&] { return window() == RgbColor{red, 9, 9}; })) << round;
    }
    fs::remove(folder.path() / "kdeglobals");
    EXPECT_TRUE(waitUntil([&] { return window() == std::nullopt; }));
}

TEST_F(LinuxAppearanceTest, FollowsGtksSettingsFile) {
    const LinuxAppearance appearance(mainLoop, options("i3"));
    EXPECT_FALSE(appearance.sources().get().isPlasma);
    EXPECT_FALSE(appearance.sources().get().gtkFilePrefersDark);
    writeInPlace("gtk-3.0/settings.ini", "[Settings]\ngtk-theme-name = Arc-Dark\n");
    EXPECT_TRUE(waitUntil([&] { return appearance.sources().get().gtkFileTheme == "Arc-Dark"; }));
    for (const char* yes : {"1", "true"}) {
        writeInPlace("gtk-3.0/settings.ini",
                     std::string("[Settings]\ngtk-application-prefer-dark-theme=") + yes + "\n");
        EXPECT_TRUE(waitUntil([&] { return appearance.sources().get().gtkFilePrefersDark; })) << yes;
        writeInPlace("gtk-3.0/settings.ini", "[Settings]\ngtk-application-prefer-dark-theme=0\n");
        EXPECT_TRUE(waitUntil([&] { return !appearance.sources().get().gtkFilePrefersDark; })) << yes;
    }
}

TEST_F(LinuxAppearanceTest, TellsOfChangesAlone) {
    LinuxAppearance appearance(mainLoop, options());
    int changes = 0;
    const auto subscription = appearance.sources().subscribeToChanges([&](const auto&) { ++changes; });
    appearance.setXsettingsTheme("Adwaita");
    appearance.setXsettingsTheme("Adwaita");
    EXPECT_EQ(changes, 1);
    appearance.setXsettingsTheme(std::nullopt);
    EXPECT_EQ(changes, 2);
}

// --- the portal

class SettingsPortalTest : public LinuxAppearanceTest {
protected:
    void SetUp() override {
        daemon.start("dbus-daemon", {"--session", "--nofork", "--print-address"});
        ASSERT_TRUE(daemon.waitForReadyRead(20000));
        address = daemon.readLine().trimmed().toStdString();
    }
    void TearDown() override {
        daemon.terminate();
        daemon.waitForFinished();
    }
    [[nodiscard]] LinuxAppearance::Options optionsWithBus() const {
        auto result = options();
        result.busAddress = address;
        return result;
    }

    QProcess daemon;
    std::string address;
};

TEST_F(SettingsPortalTest, TellsWhatIsChosenAndFollowsIt) {
    test::FakeSettingsPortal portal(address);
    portal.values = {{"color-scheme", 1U}, {"accent-color", test::FakeSettingsPortal::color(1, 0.2, 0)}};
    const LinuxAppearance appearance(mainLoop, optionsWithBus());
    const auto& sources = appearance.sources();
    ASSERT_TRUE(waitUntil([&] { return sources.get().portalScheme == ColorScheme::dark; }));
    EXPECT_EQ(sources.get().portalAccent, (RgbColor{255, 51, 0}));
    portal.change("color-scheme", 2U);
    EXPECT_TRUE(waitUntil([&] { return sources.get().portalScheme == ColorScheme::light; }));
    portal.change("color-scheme", 0U);
    EXPECT_TRUE(waitUntil([&] { return sources.get().portalScheme == std::nullopt; }));
    portal.change("accent-color", test::FakeSettingsPortal::color(0, 0, 1));
    EXPECT_TRUE(waitUntil([&] { return sources.get().portalAccent == RgbColor{0, 0, 255}; }));
    portal.change("accent-color", test::FakeSettingsPortal::color(-1, -1, -1));
    EXPECT_TRUE(waitUntil([&] { return sources.get().portalAccent == std::nullopt; })) << "no accent is chosen";
}

TEST_F(SettingsPortalTest, WhatIsNoAppearanceSaysNothing) {
    test::FakeSettingsPortal portal(address);
    portal.values = {{"color-scheme", "dark"}, {"accent-color", 7U}};
    const LinuxAppearance appearance(mainLoop, optionsWithBus());
    ASSERT_TRUE(waitUntil([&] { return portal.questions > 0; }));
    portal.change("color-scheme", 1U, "org.gnome.desktop.interface");
    portal.change("color-scheme", 99U);
    // What was sent before this has been heard once this is.
    portal.change("accent-color", test::FakeSettingsPortal::color(0, 1, 0));
    ASSERT_TRUE(waitUntil([&] { return appearance.sources().get().portalAccent.has_value(); }));
    EXPECT_EQ(appearance.sources().get().portalScheme, std::nullopt);
}

TEST_F(SettingsPortalTest, APortalThatComesLaterIsAsked) {
    const LinuxAppearance appearance(mainLoop, optionsWithBus());
    {
        test::FakeSettingsPortal portal(address);
        portal.values = {{"color-scheme", 1U}};
        ASSERT_TRUE(waitUntil([&] { return appearance.sources().get().portalScheme == ColorScheme::dark; }));
    }
    test::FakeSettingsPortal another(address);
    another.values = {{"color-scheme", 2U}};
    EXPECT_TRUE(waitUntil([&] { return appearance.sources().get().portalScheme == ColorScheme::light; }));
}

TEST_F(SettingsPortalTest, APortalOnABusThatWasRestartedIsAskedAndFollowed) {
    test::RestartableBus restarted;
    auto options = optionsWithBus();
    options.busAddress = restarted.address();
    const LinuxAppearance appearance(mainLoop, options);
    const auto scheme = [&] { return appearance.sources().get().portalScheme; };
    {
        test::FakeSettingsPortal portal(restarted.address());
        portal.values = {{"color-scheme", 1U}};
        ASSERT_TRUE(waitUntil([&] { return scheme() == ColorScheme::dark; }));
        restarted.end();
    }
    restarted.start();
    test::FakeSettingsPortal next(restarted.address());
    next.values = {{"color-scheme", 2U}};
    EXPECT_TRUE(waitUntil([&] { return scheme() == ColorScheme::light; }));
    next.change("color-scheme", 1U);
    EXPECT_TRUE(waitUntil([&] { return scheme() == ColorScheme::dark; }));
}

TEST_F(SettingsPortalTest, ABusThatCannotBeReachedIsNoBus) {
    auto unreachable = options();
    unreachable.busAddress = "unix:path=/nonexistent/bus";
    LinuxAppearance appearance(mainLoop, unreachable);
    appearance.setXsettingsTheme("Adwaita-dark");
    EXPECT_EQ(appearance.sources().get().xsettingsTheme, "Adwaita-dark");
}

}  // namespace
}  // namespace ferrowyn

#include "services/icon_provider.h"

#include "platform/icon_source.h"
#include "platform/simulated/simulated_desktop.h"
#include "platform/workspace.h"

namespace ferrowyn {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

class IconProviderTest : public testing::Test {
protected:
    static AppWindow window(WindowId id, Pid pid, std::optional<std::string> bundleIdentifier,
                            std::optional<std::string> bundleURL) {
        AppWindow window;
        window.id = id;
        window.pid = pid;
        window.appName = "Editor";
        window.bundleIdentifier = std::move(bundleIdentifier);
        window.bundleURL = std::move(bundleURL);
        return window;
    }

    SimulatedDesktop desktop;
    IconProvider provider{desktop.platform().icons, desktop.platform().workspace};
};

TEST_F(IconProviderTest, TwoWindowsOfOneApplicationCauseOneLoad) {
    const auto image = provider.icon(window(1, 100, "org.example.editor", "/apps/editor.desktop")).image;
    EXPECT_EQ(provider.icon(window(2, 100, "org.example.editor", "/apps/editor.desktop")).image, image);
    EXPECT_THAT(desktop.takeIconLoads(), ElementsAre("file /apps/editor.desktop"));
}

TEST_F(IconProviderTest, KeysAnApplicationWithoutAnIdentifierByItsProcess) {
    EXPECT_EQ(IconProvider::cacheKey(std::nullopt, 512), "pid:512");
    EXPECT_EQ(IconProvider::cacheKey("org.example.editor", 512), "org.example.editor");
}

TEST_F(IconProviderTest, ForgetsAProcessThatTerminates) {
    desktop.launch({.pid = 512});
    static_cast<void>(provider.icon(window(1, 512, std::nullopt, std::nullopt)));
    static_cast<void>(provider.icon(window(1, 512, std::nullopt, std::nullopt)));
    EXPECT_THAT(desktop.takeIconLoads(), ElementsAre("process 512"));
    desktop.terminate(512);
    desktop.settle();
    static_cast<void>(provider.icon(window(1, 512, std::nullopt, std::nullopt)));
    EXPECT_FALSE(desktop.takeIconLoads().empty());
}

TEST_F(IconProviderTest, ForgetsAnApplicationByItsIdentifierAndKeepsTheOthers) {
    desktop.launch({.pid = 7, .bundleIdentifier = "org.example.a"});
    desktop.launch({.pid = 8, .bundleIdentifier = "org.example.b"});
    static_cast<void>(provider.icon(window(1, 7, "org.example.a", "/a")));
    static_cast<void>(provider.icon(window(2, 8, "org.example.b", "/b")));
    static_cast<void>(desktop.takeIconLoads());
    desktop.terminate(7);
    desktop.settle();
    static_cast<void>(provider.icon(window(1, 7, "org.example.a", "/a")));
    static_cast<void>(provider.icon(window(2, 8, "org.example.b", "/b")));
    EXPECT_THAT(desktop.takeIconLoads(), ElementsAre("file /a"));
}

TEST_F(IconProviderTest, AnExitedProcessGetsTheGenericIconAndKeepsIt) {
    desktop.setProcessHasIcon(9, false);
    ASSERT_NE(provider.icon(window(1, 9, std::nullopt, std::nullopt)).image, nullptr);
    static_cast<void>(provider.icon(window(1, 9, std::nullopt, std::nullopt)));
    EXPECT_THAT(desktop.takeIconLoads(), ElementsAre("process 9", "generic Editor"));
}

TEST_F(IconProviderTest, AnIconThatComesAfterTheWindowTakesThePlaceOfTheGenericOne) {
    desktop.setProcessHasIcon(9, false);
    const auto generic = provider.icon(window(1, 9, "org.example.late", std::nullopt)).image;
    std::vector<Pid> replaced;
    const auto subscription = provider.replacements().subscribe([&](const Pid& pid) { replaced.push_back(pid); });
    desktop.setProcessHasIcon(10, true);
    EXPECT_THAT(replaced, IsEmpty()) << "another process's icon is none of its business";
    desktop.setProcessHasIcon(9, true);
    EXPECT_THAT(replaced, ElementsAre(9));
    EXPECT_FALSE(provider.holds(window(1, 9, "org.example.late", std::nullopt)));
    EXPECT_NE(provider.icon(window(1, 9, "org.example.late", std::nullopt)).image, generic);
}

TEST_F(IconProviderTest, TheIconOfAnInstalledApplicationStaysWhateverItsWindowsCarry) {
    static_cast<void>(provider.icon(window(1, 9, "org.example.editor", "/apps/editor.desktop")));
    desktop.setProcessHasIcon(9, true);
    EXPECT_TRUE(provider.holds(window(1, 9, "org.example.editor", "/apps/editor.desktop")));
}

TEST_F(IconProviderTest, FallsBackWhenTheFileHasNoIcon) {
    desktop.setFileHasIcon("/apps/editor.desktop", false);
    ASSERT_NE(provider.icon(window(1, 9, "org.example.editor", "/apps/editor.desktop")).image, nullptr);
    EXPECT_THAT(desktop.takeIconLoads(), ElementsAre("file /apps/editor.desktop", "process 9"));
}

TEST_F(IconProviderTest, EveryIconIs32PointsWideAndHigh) {
    desktop.setProcessHasIcon(11, false);
    const AppWindow ofAProcess = window(1, 9, std::nullopt, std::nullopt);
    const AppWindow ofAFile = window(2, 10, "org.example.a", "/a");
    const AppWindow ofNeither = window(3, 11, std::nullopt, std::nullopt);
    for (const AppWindow* const shown : {&ofAProcess, &ofAFile, &ofNeither}) {
        for (const char* const state : {"loaded", "kept"}) {
            const Icon& icon = provider.icon(*shown);
            ASSERT_NE(icon.image, nullptr) << state;
            EXPECT_EQ(icon.size, (Size{32, 32})) << state;
            for (const int scale : {1, 2}) {
                const PixelBuffer pixels = icon.image->render(static_cast<int>(icon.size.width) * scale);
                EXPECT_EQ(pixels.width, 32 * scale);
                EXPECT_EQ(pixels.height, 32 * scale);
                EXPECT_EQ(pixels.pixels.size(), static_cast<std::size_t>(32 * 32 * scale * scale));
            }
        }
    }
    EXPECT_THAT(desktop.takeIconLoads(), ElementsAre("process 9", "file /a", "process 11", "generic Editor"));
}

TEST_F(IconProviderTest, RemovingAllLoadsEverythingAnew) {
    static_cast<void>(provider.icon(window(2, 10, "org.example.a", "/a")));
    provider.removeAll();
    static_cast<void>(provider.icon(window(2, 10, "org.example.a", "/a")));
    EXPECT_THAT(desktop.takeIconLoads(), ElementsAre("file /a", "file /a"));
}

/// A workspace and an icon source that know who listens to them.
class CountedWorkspace final : public Workspace {
public:
    [[nodiscard]] std::vector<RunningApplication> runningApplications() const override { return {}; }
    [[nodiscard]] std::optional<RunningApplication> runningApplication(Pid) const override { return std::nullopt; }
    [[nodiscard]] std::optional<Pid> frontmostPid() const override { return std::nullopt; }
    [[nodiscard]] Subscription observe(EventHandler handler) override { return events.subscribe(std::move(handler)); }
    [[nodiscard]] std::optional<std::string> installedApplicationName(std::string_view) const override {
        return std::nullopt;
    }
    [[nodiscard]] std::optional<std::string> installedApplicationPath(std::string_view) const override {
        return std::nullopt;
    }
    bool open(std::string_view) override { return false; }
    bool openSettings(SettingsPage) override { return false; }

    Subject<WorkspaceEvent> events;
};

class CountedIconSource final : public IconSource {
public:
    [[nodiscard]] std::shared_ptr<const IconImage> iconForFile(std::string_view) override { return nullptr; }
    [[nodiscard]] std::shared_ptr<const IconImage> iconForProcess(Pid) override { return nullptr; }
    [[nodiscard]] std::shared_ptr<const IconImage> genericApplicationIcon(std::string_view) override { return nullptr; }
    [[nodiscard]] Subscription observeProcessIcons(std::function<void(Pid)> handler) override {
        return changes.subscribe([told = std::move(handler)](const Pid& pid) { told(pid); });
    }

    Subject<Pid> changes;
};

TEST(IconProviderRegistrationTest, EndsWithTheProvider) {
    CountedWorkspace workspace;
    CountedIconSource source;
    {
        const IconProvider provider(source, workspace);
        EXPECT_TRUE(workspace.events.hasSubscribers());
        EXPECT_TRUE(source.changes.hasSubscribers());
    }
    EXPECT_FALSE(workspace.events.hasSubscribers());
    EXPECT_FALSE(source.changes.hasSubscribers());
}

TEST_F(IconProviderTest, EventsThatAreNoTerminationForgetNothing) {
    desktop.launch({.pid = 7, .bundleIdentifier = "org.example.a"});
    static_cast<void>(provider.icon(window(1, 7, "org.example.a", "/a")));
    static_cast<void>(desktop.takeIconLoads());
    desktop.setHidden(7, true);
    desktop.setSpaceChanged();
    desktop.settle();
    static_cast<void>(provider.icon(window(1, 7, "org.example.a", "/a")));
    EXPECT_THAT(desktop.takeIconLoads(), IsEmpty());
}

class IconPrefetcherTest : public testing::Test {
protected:
    /// Of an application that runs.
    AppWindow windowOf(WindowId id, Pid pid) {
        if (!desktop.platform().workspace.runningApplication(pid)) {
            desktop.launch({.pid = pid});
        }
        AppWindow window;
        window.id = id;
        window.pid = pid;
        window.appName = "App";
        return window;
    }

    SimulatedDesktop desktop;
    IconProvider icons{desktop.platform().icons, desktop.platform().workspace};
    Published<std::vector<AppWindow>> windows;
    std::unique_ptr<IconPrefetcher> prefetcher =
        std::make_unique<IconPrefetcher>(desktop.platform().mainLoop, desktop.platform().workspace, icons, windows);
};

TEST_F(IconPrefetcherTest, LoadsOneIconAnApplicationInLaterTurnsMostRecentFirst) {
    windows.set({windowOf(1, 10), windowOf(2, 11), windowOf(3, 10)});
    EXPECT_THAT(desktop.takeIconLoads(), IsEmpty());
    desktop.settle();
    EXPECT_THAT(desktop.takeIconLoads(), ElementsAre("process 10", "process 11"));
    windows.set({windowOf(2, 11), windowOf(4, 12)});
    desktop.settle();
    EXPECT_THAT(desktop.takeIconLoads(), ElementsAre("process 12")) << "the others are there already";
}

TEST_F(IconPrefetcherTest, DoesNotLoadForWindowsThatNobodyWillScrollTo) {
    std::vector<AppWindow> many;
    for (int i = 0; i < 100; ++i) {
        many.push_back(windowOf(static_cast<WindowId>(i + 1), 1000 + i));
    }
    windows.set(many);
    desktop.settle();
    EXPECT_THAT(desktop.takeIconLoads(), SizeIs(IconPrefetcher::mostApplications));
}

TEST_F(IconPrefetcherTest, ForgetsWhatANewerListDoesNotHave) {
    windows.set({windowOf(1, 10)});
    windows.set({windowOf(2, 11)});
    desktop.settle();
    EXPECT_THAT(desktop.takeIconLoads(), ElementsAre("process 11"));
}

TEST_F(IconPrefetcherTest, LoadsNothingForAnApplicationThatHasQuit) {
    windows.set({windowOf(1, 10), windowOf(2, 11)});
    desktop.terminate(10);
    desktop.settle();
    EXPECT_THAT(desktop.takeIconLoads(), ElementsAre("process 11"));
    // A reading that began before the end may still name its windows.
    auto late = windows.get();
    windows.set(std::move(late));
    desktop.settle();
    EXPECT_THAT(desktop.takeIconLoads(), IsEmpty());
}

TEST_F(IconPrefetcherTest, LoadsAnIconThatWasReplacedAtMostOnceASecond) {
    windows.set({windowOf(1, 10), windowOf(2, 11)});
    desktop.settle();
    static_cast<void>(desktop.takeIconLoads());
    for (int change = 0; change < 5; ++change) {
        desktop.setProcessHasIcon(10, true);
        desktop.advance(Seconds(0.1));
    }
    EXPECT_THAT(desktop.takeIconLoads(), IsEmpty());
    desktop.advance(Seconds(0.6));
    EXPECT_THAT(desktop.takeIconLoads(), ElementsAre("process 10"));
    desktop.advance(Seconds(10));
    EXPECT_THAT(desktop.takeIconLoads(), IsEmpty());
}

TEST_F(IconPrefetcherTest, ATaskThatRunsAfterTheEndTouchesNothing) {
    windows.set({windowOf(1, 10)});
    prefetcher.reset();
    desktop.settle();
    EXPECT_THAT(desktop.takeIconLoads(), IsEmpty());
}

}  // namespace
}  // namespace ferrowyn

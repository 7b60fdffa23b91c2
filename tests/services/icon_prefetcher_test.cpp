#include "services/icon_provider.h"

#include "platform/simulated/simulated_desktop.h"

namespace ferrowyn {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

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

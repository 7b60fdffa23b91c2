#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <iostream>
#include <random>
#include <thread>

#include "tests/x11/adapter/tap_rig.h"
#include "tests/x11/harness/desktop_processes.h"
#include "tests/x11/harness/test_desktop.h"
#include "tests/x11/harness/test_input.h"
#include "tests/x11/harness/test_window.h"

namespace ferrowyn::x11test {
namespace {

using Clock = std::chrono::steady_clock;

struct Series {
    const char* manager;
    int sessions;
};

std::string nameOf(const testing::TestParamInfo<Series>& series) {
    return series.param.manager;
}

/// Times between the events of a quick hand on a real keyboard, more of them short than long.
class Hand {
public:
    Hand(TapPhysicalKeyboard& keyboard, unsigned seed) : input_(keyboard), random_(seed) {}

    void pressTrigger() {
        input_.press(key::leftAlt);
        pause();
        pressedAt_ = Clock::now();
        input_.press(key::tab);
        pause();
    }
    void releaseTrigger() {
        const bool isTabFirst = std::bernoulli_distribution(0.5)(random_);
        input_.release(isTabFirst ? key::tab : key::leftAlt);
        pause();
        input_.release(isTabFirst ? key::leftAlt : key::tab);
        pause();
    }
    [[nodiscard]] Clock::time_point pressedAt() const { return pressedAt_; }

private:
    void pause() {
        std::uniform_real_distribution<double> exponent(std::log(0.3), std::log(30.0));
        // The input of the test itself, not a wait for something.
        std::this_thread::sleep_for(std::chrono::duration<double, std::milli>(std::exp(exponent(random_))));
    }

    TapPhysicalKeyboard& input_;
    std::mt19937 random_;
    std::atomic<Clock::time_point> pressedAt_{};
};

class TapSessionsTest : public testing::TestWithParam<Series> {
protected:
    void expectNothingLeft(TapRig& rig) {
        EXPECT_FALSE(rig.isVisible());
        EXPECT_TRUE(desktop.waitForUntouchedKeyboard())
            << (desktop.anyKeyIsDown() ? "a key is stuck" : "a grab is left");
    }

    PrivateXServer server;
    WindowManagerProcess manager{server, GetParam().manager};
    TestDesktop desktop{server.display()};
    TestWindow first{server.display(), {.title = "First"}};
    TestWindow second{server.display(), {.title = "Second", .x = 300}};
    TapPhysicalKeyboard keyboard{server.display()};
};

TEST_P(TapSessionsTest, EachQuickToggleOpensAndClosesOneSessionHoweverSlowTheMainThread) {
    TapRig rig(server.display(), {.maximumMainDelay = milliseconds{60}, .seed = 7});
    Hand hand(keyboard, 42);
    for (int session = 1; session <= GetParam().sessions; ++session) {
        hand.pressTrigger();
        hand.releaseTrigger();
    }
    // The main thread is at most the last seconds behind.
    EXPECT_TRUE(rig.waitUntil([&] { return rig.closed() >= GetParam().sessions; }, milliseconds{60000}));
    EXPECT_EQ(rig.opened(), GetParam().sessions);
    EXPECT_EQ(rig.closed(), GetParam().sessions);
    EXPECT_EQ(rig.moves(), 0);
    expectNothingLeft(rig);
    EXPECT_THAT(first.takeInput().keyPresses, testing::Not(testing::Contains(key::tab)));
    EXPECT_THAT(second.takeInput().keyPresses, testing::Not(testing::Contains(key::tab)));
}

TEST_P(TapSessionsTest, TheTriggerReachesTheCallbackAtOnce) {
    TapRig rig(server.display(), {});
    Hand hand(keyboard, 1);
    std::vector<double> latencies;
    rig.onTrigger = [&] {
        latencies.push_back(std::chrono::duration<double, std::milli>(Clock::now() - hand.pressedAt()).count());
    };
    for (int session = 1; session <= GetParam().sessions; ++session) {
        hand.pressTrigger();
        hand.releaseTrigger();
        ASSERT_TRUE(rig.waitForClosed(session)) << session;
    }
    rig.removeTap();
    const auto count = latencies.size();
    ASSERT_EQ(count, static_cast<std::size_t>(GetParam().sessions));
    std::sort(latencies.begin(), latencies.end());
    std::cout << GetParam().manager << ": trigger to callback, ms: median " << latencies[count / 2] << ", p95 "
              << latencies[count * 95 / 100] << ", max " << latencies.back() << '\n';
    // Generous, for a loaded machine and for sanitizers: what is excluded is a wait.
    EXPECT_LT(latencies[count / 2], 20.0);
}

// The full counts are those of the whole program's fast switches; here every manager is met, with a slow main thread.
INSTANTIATE_TEST_SUITE_P(Managers, TapSessionsTest, testing::Values(Series{"openbox", 100}, Series{"xfwm4", 100}),
                         nameOf);
INSTANTIATE_TEST_SUITE_P(FurtherManagers, TapSessionsTest,
                         testing::Values(Series{"icewm", 40}, Series{"metacity", 40}, Series{"i3", 40},
                                         Series{"kwin_x11", 40}, Series{"mutter", 40}),
                         nameOf);

}  // namespace
}  // namespace ferrowyn::x11test

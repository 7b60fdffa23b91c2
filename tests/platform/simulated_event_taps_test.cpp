#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <condition_variable>
#include <mutex>

#include "platform/simulated/simulated_desktop.h"

namespace ferrowyn {
namespace {

using namespace std::chrono_literals;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// Hands a value from the tap thread to the test.
template <typename Value>
class Handover {
public:
    void put(Value value) {
        const std::scoped_lock lock(lock_);
        value_ = std::move(value);
        arrived_.notify_all();
    }
    [[nodiscard]] Value wait() {
        std::unique_lock lock(lock_);
        arrived_.wait(lock, [this] { return value_.has_value(); });
        return *value_;
    }

private:
    std::mutex lock_;
    std::condition_variable arrived_;
    std::optional<Value> value_;
};

class SimulatedEventTapsTest : public ::testing::Test {
protected:
    SimulatedDesktop desktop;
    EventTaps& taps = desktop.platform().eventTaps;
    std::vector<TapEvent::Type> seen;
    TapVerdict verdict;
    bool wasEnabledWhenTold = true;

    [[nodiscard]] std::shared_ptr<EventTap> createTap() {
        return taps.create(EventTaps::keyboardMask, SwitcherModifier::option, [this](const TapEvent& event) {
            seen.push_back(event.type());
            wasEnabledWhenTold = desktop.tapIsEnabled();
            return verdict;
        });
    }
};

TEST_F(SimulatedEventTapsTest, KeysReachOnlyATapThatIsEnabledAndServed) {
    EXPECT_TRUE(desktop.keyDown({.keyCode = 48})) << "no tap, so the application gets it";
    const auto tap = createTap();
    EXPECT_TRUE(desktop.tapIsInstalled());
    EXPECT_FALSE(desktop.tapIsEnabled()) << "disabled at first";
    desktop.keyDown({.keyCode = 48});
    tap->setEnabled(true);
    desktop.keyDown({.keyCode = 48});
    EXPECT_THAT(seen, IsEmpty()) << "no loop serves it yet";

    const auto loop = taps.currentRunLoop();
    const auto source = taps.createSource(tap);
    source->addTo(*loop);
    verdict.isSwallowed = true;
    EXPECT_FALSE(desktop.keyDown({.keyCode = 48}));
    verdict.isSwallowed = false;
    EXPECT_TRUE(desktop.keyUp({.keyCode = 48}));
    EXPECT_TRUE(desktop.flagsChanged(0));
    EXPECT_THAT(seen, ElementsAre(TapEvent::Type::keyDown, TapEvent::Type::keyUp, TapEvent::Type::flagsChanged));
    source->removeFrom(*loop);
    desktop.keyDown({.keyCode = 48});
    EXPECT_EQ(seen.size(), 3U);
}

TEST_F(SimulatedEventTapsTest, ADisabledTapIsToldAfterwards) {
    const auto tap = createTap();
    const auto source = taps.createSource(tap);
    source->addTo(*taps.currentRunLoop());
    tap->setEnabled(true);
    desktop.disableTapByTimeout();
    EXPECT_FALSE(wasEnabledWhenTold);
    tap->setEnabled(true);
    desktop.disableTapByUserInput();
    EXPECT_THAT(seen, ElementsAre(TapEvent::Type::disabledByTimeout, TapEvent::Type::disabledByUserInput));
    tap->setEnabled(true);
    desktop.disableTapSilently();
    EXPECT_FALSE(tap->isEnabled());
    EXPECT_EQ(seen.size(), 2U);
}

TEST_F(SimulatedEventTapsTest, AnInvalidatedOrDroppedTapIsGone) {
    auto tap = createTap();
    tap->setEnabled(true);
    tap->openSession(TapSession{2});
    tap->closeSession(TapSession{1});
    EXPECT_TRUE(desktop.tapSessionIsOpen()) << "another session has ended";
    EXPECT_EQ(desktop.tapTrigger(), SwitcherModifier::option);
    tap->invalidate();
    tap->setEnabled(true);
    EXPECT_FALSE(desktop.tapIsInstalled());
    EXPECT_FALSE(desktop.tapIsEnabled());
    EXPECT_EQ(desktop.tapTrigger(), std::nullopt);
    tap = createTap();
    EXPECT_TRUE(desktop.tapIsInstalled());
    tap.reset();
    EXPECT_FALSE(desktop.tapIsInstalled());
    EXPECT_EQ(desktop.tapCreationCount(), 2);
}

TEST_F(SimulatedEventTapsTest, CreationAndSourceCanBeRefused) {
    desktop.setTapCreationFails(true);
    EXPECT_EQ(createTap(), nullptr);
    desktop.setTapCreationFails(false);
    const auto tap = createTap();
    desktop.setTapSourceFails(true);
    EXPECT_EQ(taps.createSource(tap), nullptr);
}

TEST_F(SimulatedEventTapsTest, StoppingEndsARunningSliceOfTheTapThread) {
    Handover<std::shared_ptr<TapRunLoop>> loop;
    Handover<bool> ended;
    const auto thread = taps.startThread("tap thread", [&] {
        const auto own = taps.currentRunLoop();
        loop.put(own);
        own->runFor(Seconds(600));
        ended.put(true);
    });
    EXPECT_EQ(desktop.tapThreadName(), "tap thread");
    // Whether it comes before the slice or during it: the thread would be joined in ten minutes only otherwise.
    loop.wait()->stop();
    EXPECT_TRUE(ended.wait());
}

TEST_F(SimulatedEventTapsTest, KeysTypeTheirTextWithAndWithoutFlags) {
    std::vector<std::u16string> texts;
    const auto tap = taps.create(EventTaps::keyboardMask, SwitcherModifier::option, [&](const TapEvent& event) {
        texts = {event.text(std::nullopt), event.text(0)};
        EXPECT_EQ(event.flags(), event_flags::option);
        EXPECT_EQ(event.keyCode(), 0);
        return TapVerdict{.isSwallowed = true, .requestedSession = TapSession{1}};
    });
    taps.createSource(tap)->addTo(*taps.currentRunLoop());
    tap->setEnabled(true);
    desktop.keyDown({.keyCode = 0, .flags = event_flags::option, .text = u"å", .textWithReducedFlags = u"a"});
    EXPECT_THAT(texts, ElementsAre(u"å", u"a"));
    EXPECT_EQ(desktop.lastTapVerdict(), (TapVerdict{.isSwallowed = true, .requestedSession = TapSession{1}}));
}

}  // namespace
}  // namespace ferrowyn

#include "input/session_preparation.h"

#include <gtest/gtest.h>

#include <chrono>
#include <optional>
#include <utility>

#include "inventory/window_index.h"
#include "platform/platform.h"
#include "platform/simulated/simulated_desktop.h"
#include "services/accessibility_authorizer.h"
#include "services/favourites_store.h"
#include "services/preferences.h"

namespace ferrowyn {
namespace {

using namespace std::chrono_literals;

class SessionPreparationTest : public ::testing::Test {
protected:
    SessionPreparationTest() {
        preparation.emplace(desktop.platform(),
                            SessionPreparation::Sources{.windowIndex = windowIndex,
                                                        .authorizer = authorizer,
                                                        .favourites = favourites,
                                                        .preferences = preferences},
                            [this] { ++preparations; });
    }

    /// How often it has been asked to prepare since the last call.
    int take() { return std::exchange(preparations, 0); }

    SimulatedDesktop desktop;
    Preferences preferences{desktop.platform().userDefaults};
    AccessibilityAuthorizer authorizer{desktop.platform()};
    WindowIndex windowIndex{desktop.platform()};
    FavouritesStore favourites{desktop.platform().userDefaults, desktop.platform().workspace};
    int preparations = 0;
    std::optional<SessionPreparation> preparation;
};

TEST_F(SessionPreparationTest, AsksForAFirstPreparationInATaskOfItsOwn) {
    EXPECT_EQ(take(), 0);
    desktop.settle();
    EXPECT_EQ(take(), 1);
}

TEST_F(SessionPreparationTest, ManyChangesInOneTurnAreOnePreparation) {
    desktop.settle();
    take();
    preferences.maximumVisibleRows.set(4);
    preferences.favouritesFirst.set(false);
    preparation->request();
    EXPECT_EQ(take(), 0);
    desktop.settle();
    EXPECT_EQ(take(), 1);
}

TEST_F(SessionPreparationTest, AfterASessionItWaitsATenthOfASecond) {
    EXPECT_EQ(SessionPreparation::delayAfterSession, Seconds(0.1));
    desktop.settle();
    take();
    preparation->requestAfterSession();
    desktop.advance(99ms);
    EXPECT_EQ(take(), 0);
    desktop.advance(2ms);
    EXPECT_EQ(take(), 1);
}

TEST_F(SessionPreparationTest, AChangeInThatTimeTakesThePlaceOfTheDelayedOne) {
    desktop.settle();
    take();
    preparation->requestAfterSession();
    preferences.favouritesFirst.set(false);
    desktop.settle();
    EXPECT_EQ(take(), 1);
    desktop.advance(1s);
    EXPECT_EQ(take(), 0);
}

TEST_F(SessionPreparationTest, ARequestFromTheSessionsTimeWaitsWithTheDelayedOne) {
    desktop.settle();
    take();
    preparation->request();
    preparation->requestAfterSession();
    desktop.settle();
    EXPECT_EQ(take(), 0) << "the activation comes first";
    desktop.advance(200ms);
    EXPECT_EQ(take(), 1);
}

TEST_F(SessionPreparationTest, NothingIsPreparedAfterItsEnd) {
    preparation->requestAfterSession();
    preparation.reset();
    preferences.favouritesFirst.set(false);
    desktop.advance(1s);
    EXPECT_EQ(take(), 0);
}

}  // namespace
}  // namespace ferrowyn

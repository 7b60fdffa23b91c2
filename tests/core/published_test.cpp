#include "core/published.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace ferrowyn {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

TEST(Published, DeliversTheCurrentValueAndEveryLaterOne) {
    Published<int> published(1);
    std::vector<int> seen;
    const auto token = published.subscribe([&](int value) { seen.push_back(value); });
    published.set(2);
    published.set(2);
    EXPECT_THAT(seen, ElementsAre(1, 2, 2));
}

TEST(Published, ASubscriberToDistinctValuesIsNotToldOneTwiceInARow) {
    Published<int> published(1);
    std::vector<int> seen;
    const auto token = published.subscribeToDistinct([&](int value) { seen.push_back(value); });
    for (const int value : {1, 2, 2, 1, 1, 1, 2}) {
        published.set(value);
    }
    EXPECT_THAT(seen, ElementsAre(1, 2, 1, 2));
}

TEST(Published, ASubscriberToDistinctValuesMayAssignWhileItIsTold) {
    Published<int> published(1);
    std::vector<int> seen;
    const auto token = published.subscribeToDistinct([&](int value) {
        seen.push_back(value);
        if (value == 2) {
            published.set(3);
        }
    });
    published.set(2);
    published.set(3);
    EXPECT_THAT(seen, ElementsAre(1, 2, 3));
}

TEST(Published, ASubscriberToChangesSkipsTheCurrentValue) {
    Published<int> published(1);
    std::vector<int> seen;
    const auto token = published.subscribeToChanges([&](int value) { seen.push_back(value); });
    EXPECT_THAT(seen, IsEmpty());
    published.set(2);
    EXPECT_THAT(seen, ElementsAre(2));
}

TEST(Published, PublishesOnlyADifferentValueWhenAskedTo) {
    Published<std::string> published("a");
    int deliveries = 0;
    const auto token = published.subscribeToChanges([&](const std::string&) { ++deliveries; });
    published.setIfChanged("a");
    published.setIfChanged("b");
    EXPECT_EQ(deliveries, 1);
    EXPECT_EQ(published.get(), "b");
}

TEST(Published, TheNewValueIsInPlaceBeforeSubscribersAreTold) {
    Published<int> published(1);
    int inPlace = 0;
    const auto token = published.subscribeToChanges([&](int) { inPlace = published.get(); });
    published.set(2);
    EXPECT_EQ(inPlace, 2);
}

TEST(Published, DroppingTheTokenEndsTheSubscription) {
    Published<int> published(1);
    int deliveries = 0;
    {
        const auto token = published.subscribeToChanges([&](int) { ++deliveries; });
    }
    published.set(2);
    EXPECT_EQ(deliveries, 0);
}

TEST(Published, ExchangingHandsBackTheValueThatWasThere) {
    Published<std::string> published("old");
    std::string value = "new";
    published.exchange(value);
    EXPECT_EQ(published.get(), "new");
    EXPECT_EQ(value, "old");
}

TEST(Published, AValueBeingDeliveredStaysWhatItWasWhenASubscriberAssignsAnother) {
    Published<std::vector<int>> published;
    std::vector<std::vector<int>> seenAfterwards;
    const auto first = published.subscribeToChanges([&](const std::vector<int>& value) {
        if (value.size() == 1) {
            published.set({7, 8});
        }
        seenAfterwards.push_back(value);
    });
    std::vector<std::vector<int>> seenBySecond;
    const auto second =
        published.subscribeToChanges([&](const std::vector<int>& value) { seenBySecond.push_back(value); });
    published.set({1});
    EXPECT_THAT(seenAfterwards, ElementsAre(ElementsAre(7, 8), ElementsAre(1)));
    EXPECT_THAT(seenBySecond, ElementsAre(ElementsAre(7, 8), ElementsAre(1)));
    EXPECT_THAT(published.get(), ElementsAre(7, 8));
}

TEST(Published, MayBeDestroyedByASubscriber) {
    auto published = std::make_unique<Published<std::string>>("a");
    std::string seen;
    const auto token = published->subscribeToChanges([&](const std::string& value) {
        published.reset();
        seen = value;
    });
    published->set("the value outlives its owner");
    EXPECT_EQ(seen, "the value outlives its owner");
}

TEST(Subject, TellsSubscribersInTheirOrder) {
    const Subject<int> subject;
    std::vector<std::string> seen;
    const auto first = subject.subscribe([&](int) { seen.emplace_back("first"); });
    const auto second = subject.subscribe([&](int) { seen.emplace_back("second"); });
    subject.send(1);
    EXPECT_THAT(seen, ElementsAre("first", "second"));
}

TEST(Subject, ASubscriberThatLeavesDuringADeliveryIsNotToldAnyMore) {
    const Subject<int> subject;
    Subscription second;
    int toldSecond = 0;
    const auto first = subject.subscribe([&](int) { second.reset(); });
    second = subject.subscribe([&](int) { ++toldSecond; });
    subject.send(1);
    EXPECT_EQ(toldSecond, 0);
}

TEST(Subject, ASubscriberThatJoinsDuringADeliveryGetsTheNextValue) {
    const Subject<int> subject;
    std::vector<int> seen;
    Subscription late;
    const auto first = subject.subscribe([&](int) {
        if (!late) {
            late = subject.subscribe([&](int value) { seen.push_back(value); });
        }
    });
    subject.send(1);
    subject.send(2);
    EXPECT_THAT(seen, ElementsAre(2));
}

TEST(Subject, KnowsWhetherAnyoneListens) {
    const Subject<int> subject;
    EXPECT_FALSE(subject.hasSubscribers());
    auto token = subject.subscribe([](int) {});
    EXPECT_TRUE(subject.hasSubscribers());
    token.reset();
    EXPECT_FALSE(subject.hasSubscribers());
}

TEST(Subscription, ATokenMayOutliveWhatItStandsFor) {
    std::optional<Subject<int>> subject(std::in_place);
    auto token = subject->subscribe([](int) {});
    subject.reset();
    token.reset();
    EXPECT_FALSE(token);
}

TEST(Subscription, EndsOnceHoweverOftenItIsMovedOrReset) {
    int ended = 0;
    {
        Subscription token([&] { ++ended; });
        Subscription moved(std::move(token));
        EXPECT_TRUE(moved);
        Subscription assigned;
        assigned = std::move(moved);
        EXPECT_EQ(ended, 0);
        assigned.reset();
        assigned.reset();
        EXPECT_EQ(ended, 1);
    }
    EXPECT_EQ(ended, 1);
}

TEST(ThreadChecker, BelongsToTheThreadOfItsFirstUse) {
    ThreadChecker checker;
    bool wasRightElsewhere = false;
    std::thread([&] { wasRightElsewhere = checker.isOnItsThread(); }).join();
    EXPECT_TRUE(wasRightElsewhere);
    EXPECT_FALSE(checker.isOnItsThread());
    ThreadChecker another;
    EXPECT_TRUE(another.isOnItsThread());
    std::thread([&] { wasRightElsewhere = another.isOnItsThread(); }).join();
    EXPECT_FALSE(wasRightElsewhere);
    EXPECT_TRUE(another.isOnItsThread());
}

TEST(Subscription, TakingAnotherEndsTheOldOne) {
    int ended = 0;
    Subscription token([&] { ++ended; });
    token = Subscription();
    EXPECT_EQ(ended, 1);
}

}  // namespace
}  // namespace ferrowyn

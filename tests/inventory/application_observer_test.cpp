#include "inventory/window_observation_center.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "platform/accessibility_observers.h"
#include "platform/simulated/simulated_window_model.h"

namespace ferrowyn {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

/// Writes down what it is asked for.
class RecordedObservers final : public AccessibilityObservers {
public:
    [[nodiscard]] std::unique_ptr<AccessibilityObserver> create(Pid, Handler handler) override {
        deliver = std::move(handler);
        return std::make_unique<Observer>(calls);
    }

    std::vector<std::string> calls;
    Handler deliver;

private:
    class Observer final : public AccessibilityObserver {
    public:
        explicit Observer(std::vector<std::string>& calls) : calls_(calls) {}
        void addApplicationNotification(std::string_view) override {}
        void addWindowNotification(const AXElementRef& window, std::string_view notification) override {
            note("add", window, notification);
        }
        void removeWindowNotification(const AXElementRef& window, std::string_view notification) override {
            note("remove", window, notification);
        }
        void detachFromMainLoop() override { calls_.emplace_back("detach"); }

    private:
        void note(const char* what, const AXElementRef& window, std::string_view notification) {
            calls_.push_back(std::string(what) + ' ' + std::to_string(SimulatedElement::idOf(window)) + ' ' +
                             std::string(notification));
        }

        std::vector<std::string>& calls_;
    };
};

class ApplicationObserverTest : public ::testing::Test {
protected:
    [[nodiscard]] std::vector<std::string> takeCalls() { return std::exchange(observers.calls, {}); }

    RecordedObservers observers;
    std::vector<WindowChange> changes;
    std::unique_ptr<ApplicationObserver> observer =
        ApplicationObserver::create(observers, 100, [this](const WindowChange& change) { changes.push_back(change); });
};

const std::vector<std::string> removalOfSeven{"remove 7 AXUIElementDestroyed", "remove 7 AXWindowMiniaturized",
                                              "remove 7 AXWindowDeminiaturized", "remove 7 AXTitleChanged"};

TEST_F(ApplicationObserverTest, AWindowIsRegisteredWhileItIsAmongThoseObserved) {
    observer->observeWindows({SimulatedElement::reference(7)});
    EXPECT_THAT(takeCalls(), ElementsAre("add 7 AXUIElementDestroyed", "add 7 AXWindowMiniaturized",
                                         "add 7 AXWindowDeminiaturized", "add 7 AXTitleChanged"));
    observer->observeWindows({SimulatedElement::reference(7)});
    EXPECT_THAT(takeCalls(), IsEmpty());
    observer->observeWindows({});
    EXPECT_EQ(takeCalls(), removalOfSeven);
    observer->observeWindows({});
    EXPECT_THAT(takeCalls(), IsEmpty());
}

TEST_F(ApplicationObserverTest, InvalidatingItUnregistersItsWindowsAndThenDetaches) {
    observer->observeWindows({SimulatedElement::reference(7)});
    static_cast<void>(takeCalls());
    observer->invalidate();
    auto expected = removalOfSeven;
    expected.emplace_back("detach");
    EXPECT_EQ(takeCalls(), expected);
    observer->invalidate();
    observer->observeWindows({SimulatedElement::reference(8)});
    observer.reset();
    EXPECT_THAT(takeCalls(), IsEmpty()) << "it stays invalid, and was unregistered before";
}

TEST_F(ApplicationObserverTest, DestroyingItInvalidatesIt) {
    observer->observeWindows({SimulatedElement::reference(7)});
    static_cast<void>(takeCalls());
    observer.reset();
    auto expected = removalOfSeven;
    expected.emplace_back("detach");
    EXPECT_EQ(takeCalls(), expected);
    observers.deliver("AXTitleChanged");
    EXPECT_THAT(changes, IsEmpty());
}

TEST_F(ApplicationObserverTest, OneThatIsInvalidTellsOfNothing) {
    observers.deliver("AXTitleChanged");
    ASSERT_THAT(changes, SizeIs(1));
    observer->invalidate();
    observers.deliver("AXTitleChanged");
    observer->handle("AXWindowCreated");
    EXPECT_THAT(changes, SizeIs(1));
}

}  // namespace
}  // namespace ferrowyn

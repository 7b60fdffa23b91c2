#include "services/favourites_store.h"

#include <array>
#include <string>

#include "platform/simulated/simulated_desktop.h"

namespace ferrowyn {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* storedKey = "switcher.favouriteBundleIdentifiers";

AppWindow windowOf(WindowId id, std::optional<std::string> bundleIdentifier) {
    AppWindow window;
    window.id = id;
    window.bundleIdentifier = std::move(bundleIdentifier);
    return window;
}

class FavouritesStoreTest : public testing::Test {
protected:
    void storeFavourites(std::vector<std::string> identifiers) {
        desktop.userDefaults().set(storedKey, std::move(identifiers));
    }
    [[nodiscard]] FavouritesStore makeStore() { return {desktop.userDefaults(), desktop.platform().workspace}; }
    /// How often the list was stored since the test began with this many values.
    [[nodiscard]] std::size_t storedCount() const { return desktop.storedValues().size(); }

    SimulatedDesktop desktop;
};

TEST_F(FavouritesStoreTest, StartsEmptyWithoutAStoredListAndStoresNothing) {
    const auto store = makeStore();
    EXPECT_THAT(store.bundleIdentifiers().get(), IsEmpty());
    EXPECT_EQ(storedCount(), 0U);
}

TEST_F(FavouritesStoreTest, AStoredValueOfAnotherTypeReadsAsAnEmptyList) {
    desktop.userDefaults().set(storedKey, std::string("org.example.a"));
    EXPECT_THAT(makeStore().bundleIdentifiers().get(), IsEmpty());
}

TEST_F(FavouritesStoreTest, TogglingTwiceLeavesTheListAsItWasAndStoresItTwice) {
    storeFavourites({"org.example.a"});
    auto store = makeStore();
    const auto before = storedCount();
    store.toggle(windowOf(1, "org.example.b"));
    EXPECT_THAT(store.bundleIdentifiers().get(), ElementsAre("org.example.a", "org.example.b"));
    store.toggle(windowOf(1, "org.example.b"));
    EXPECT_THAT(store.bundleIdentifiers().get(), ElementsAre("org.example.a"));
    EXPECT_EQ(storedCount(), before + 2);
    EXPECT_THAT(*desktop.userDefaults().stringArray(storedKey), ElementsAre("org.example.a"));
}

TEST_F(FavouritesStoreTest, AToggleRemovesOnlyTheFirstOfTwoEqualIdentifiers) {
    storeFavourites({"org.example.a", "org.example.b", "org.example.a"});
    auto store = makeStore();
    store.toggle(windowOf(1, "org.example.a"));
    EXPECT_THAT(store.bundleIdentifiers().get(), ElementsAre("org.example.b", "org.example.a"));
}

TEST_F(FavouritesStoreTest, AWindowWithoutAnIdentifierChangesNothing) {
    auto store = makeStore();
    store.toggle(windowOf(1, std::nullopt));
    EXPECT_THAT(store.bundleIdentifiers().get(), IsEmpty());
    EXPECT_EQ(storedCount(), 0U);
}

TEST_F(FavouritesStoreTest, RemovesTheFirstOccurrenceAndSaves) {
    storeFavourites({"a", "b", "a"});
    auto store = makeStore();
    store.remove("a");
    EXPECT_THAT(*desktop.userDefaults().stringArray(storedKey), ElementsAre("b", "a"));
}

TEST_F(FavouritesStoreTest, RemovingAnUnknownIdentifierStoresAndTellsNothing) {
    storeFavourites({"a"});
    auto store = makeStore();
    const auto before = storedCount();
    int told = 0;
    const auto subscription = store.bundleIdentifiers().subscribeToChanges([&](const auto&) { ++told; });
    store.remove("b");
    EXPECT_EQ(storedCount(), before);
    EXPECT_EQ(told, 0);
}

TEST_F(FavouritesStoreTest, RemovingAllStoresAnEmptyListOnce) {
    storeFavourites({"a", "b"});
    auto store = makeStore();
    const auto before = storedCount();
    store.removeAll();
    store.removeAll();
    EXPECT_EQ(storedCount(), before + 1);
    EXPECT_THAT(*desktop.userDefaults().stringArray(storedKey), IsEmpty());
}

TEST_F(FavouritesStoreTest, PublishesBeforeItSaves) {
    auto store = makeStore();
    std::vector<std::size_t> sizes;
    const auto subscription = store.bundleIdentifiers().subscribe([&](const auto& identifiers) {
        sizes.push_back(identifiers.size());
        EXPECT_EQ(storedCount(), 0U);
    });
    store.toggle(windowOf(1, "a"));
    EXPECT_THAT(sizes, ElementsAre(0U, 1U));
    EXPECT_EQ(storedCount(), 1U);
}

TEST_F(FavouritesStoreTest, FavouritesKeepTheirRecencyOrder) {
    storeFavourites({"A", "B"});
    const std::array windows{windowOf(1, "B"), windowOf(2, "C"), windowOf(3, "A"), windowOf(4, std::nullopt),
                             windowOf(5, "B")};
    std::vector<WindowId> ids;
    for (const AppWindow* window :
         makeStore().ordered({&windows[0], &windows[1], &windows[2], &windows[3], &windows[4]})) {
        ids.push_back(window->id);
    }
    EXPECT_THAT(ids, ElementsAre(1U, 3U, 5U, 2U, 4U));
}

TEST_F(FavouritesStoreTest, WithoutFavouritesTheOrderStays) {
    const std::array windows{windowOf(2, "B"), windowOf(1, "A")};
    EXPECT_THAT(makeStore().ordered({&windows[0], &windows[1]}), ElementsAre(&windows[0], &windows[1]));
}

TEST_F(FavouritesStoreTest, DisplaysTheInstalledApplicationsName) {
    desktop.setInstalledApplicationName("org.example.editor", "Text Editor");
    desktop.setInstalledApplicationName("org.example.nameless", "");
    const auto store = makeStore();
    EXPECT_EQ(store.displayName("org.example.editor"), "Text Editor");
    EXPECT_EQ(store.displayName("org.example.nameless"), "");
}

TEST_F(FavouritesStoreTest, DisplaysTheLastComponentOfAnApplicationThatIsNotInstalled) {
    desktop.setInstalledApplicationName("org.example.broken", std::nullopt);
    const auto store = makeStore();
    EXPECT_EQ(store.displayName("org.example.broken"), "broken");
    EXPECT_EQ(store.displayName("org.example.gone"), "gone");
    EXPECT_EQ(store.displayName("gone"), "gone");
    EXPECT_EQ(store.displayName(""), "");
}

}  // namespace
}  // namespace ferrowyn

#include "services/favourites_store.h"

#include <algorithm>
#include <unordered_set>
#include <utility>

#include "platform/user_defaults.h"
#include "platform/workspace.h"

namespace ferrowyn {

namespace {

constexpr std::string_view storedKey = "switcher.favouriteBundleIdentifiers";

}  // namespace

FavouritesStore::FavouritesStore(UserDefaults& defaults, const Workspace& workspace)
    : bundleIdentifiers_(defaults.stringArray(storedKey).value_or(std::vector<std::string>{})),
      defaults_(defaults),
      workspace_(workspace) {}

std::vector<const AppWindow*> FavouritesStore::ordered(std::vector<const AppWindow*> windows) const {
    const auto& favourites = bundleIdentifiers_.get();
    if (favourites.empty()) {
        return windows;
    }
    const std::unordered_set<std::string_view> identifiers(favourites.begin(), favourites.end());
    std::ranges::stable_partition(windows, [&identifiers](const AppWindow* window) {
        return window->bundleIdentifier && identifiers.contains(*window->bundleIdentifier);
    });
    return windows;
}

void FavouritesStore::toggle(const AppWindow& window) {
    if (!window.bundleIdentifier) {
        return;
    }
    auto identifiers = bundleIdentifiers_.get();
    if (const auto found = std::ranges::find(identifiers, *window.bundleIdentifier); found != identifiers.end()) {
        identifiers.erase(found);
    } else {
        identifiers.push_back(*window.bundleIdentifier);
    }
    bundleIdentifiers_.set(std::move(identifiers));
    save();
}

void FavouritesStore::remove(std::string_view bundleIdentifier) {
    auto identifiers = bundleIdentifiers_.get();
    const auto found = std::ranges::find(identifiers, bundleIdentifier);
    if (found == identifiers.end()) {
        return;
    }
    identifiers.erase(found);
    bundleIdentifiers_.set(std::move(identifiers));
    save();
}

void FavouritesStore::removeAll() {
    if (bundleIdentifiers_.get().empty()) {
        return;
    }
    bundleIdentifiers_.set({});
    save();
}

std::string FavouritesStore::displayName(std::string_view bundleIdentifier) const {
    if (auto name = workspace_.installedApplicationName(bundleIdentifier)) {
        return *std::move(name);
    }
    const auto lastDot = bundleIdentifier.rfind('.');
    return std::string(lastDot == std::string_view::npos ? bundleIdentifier : bundleIdentifier.substr(lastDot + 1));
}

void FavouritesStore::save() {
    defaults_.set(storedKey, bundleIdentifiers_.get());
}

}  // namespace ferrowyn

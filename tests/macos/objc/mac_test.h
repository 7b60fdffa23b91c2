#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "core/published.h"
#include "tests/macos/objc/fakes/appkit.h"
#include "tests/macos/objc/runtime/objects.h"

namespace ferrowyn::test {

/// A Mac on which nothing has happened yet. When the test ends, nothing that it or the layer made may be left: no
/// observer, no monitor, no item in the menu bar, no object at all.
class MacTest : public testing::Test {
protected:
    void TearDown() override;

    [[nodiscard]] static std::string text(NSString* string);
    /// Expects one call of the handler for each `happen`, until the token is dropped.
    static void expectToldUntilDropped(const std::function<Subscription(std::function<void()> handler)>& observe,
                                       const std::function<void()>& happen);

    // Of the menu of the only item in the menu bar:
    [[nodiscard]] static NSMenuItem* rowTitled(const std::string& title);
    /// One line a row: what the user sees.
    [[nodiscard]] static std::vector<std::string> shownRows();

private:
    /// For what the test autoreleases outside the callbacks of the system, which have their own pools.
    std::optional<objc_runtime::AutoreleasePool> pool_{std::in_place};
};

}  // namespace ferrowyn::test

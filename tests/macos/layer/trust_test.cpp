#include "platform/macos/mac_trust.h"

#include "core/published.h"
#include "tests/macos/layer/mac_fixture.h"

namespace ferrowyn {
namespace {

class MacTrustTest : public MacFixture {
protected:
    Subject<bool> database;
    MacTrust trust{[this](std::function<void()> handler) {
        return database.subscribe([told = std::move(handler)](bool) { told(); });
    }};
};

TEST_F(MacTrustTest, TrustAndSecureInputAreWhatTheSystemSaysAtThatMoment) {
    EXPECT_TRUE(trust.isTrusted());
    EXPECT_FALSE(trust.isSecureInputActive());
    system.isSecureInputEnabled = true;
    EXPECT_TRUE(trust.isSecureInputActive());
    system.isTrusted = false;
    EXPECT_FALSE(trust.isTrusted());
    EXPECT_EQ(system.promptCount, 0) << "asking alone never prompts";
    EXPECT_FALSE(trust.requestWithPrompt());
    EXPECT_EQ(system.promptCount, 1);
    system.isTrusted = true;
    EXPECT_TRUE(trust.requestWithPrompt());
}

TEST_F(MacTrustTest, ChangesOfTheDatabaseAreHintsUntilTheTokenIsDropped) {
    int hints = 0;
    auto subscription = trust.observeChanges([&] { ++hints; });
    database.send(true);
    subscription.reset();
    database.send(true);
    EXPECT_EQ(hints, 1);
}

}  // namespace
}  // namespace ferrowyn

#include "tests/platform/contract/login_item_contract.h"

#include <gmock/gmock.h>

namespace ferrowyn::contract {

TEST_P(LoginItemContract, ItIsRegisteredAndUnregistered) {
    auto& item = driver->item();
    EXPECT_EQ(item.status(), Status::notRegistered);
    EXPECT_FALSE(item.registerProgram());
    EXPECT_EQ(item.status(), Status::enabled);
    EXPECT_FALSE(item.unregisterProgram());
    EXPECT_EQ(item.status(), Status::notRegistered);
    EXPECT_FALSE(item.registerProgram());
    EXPECT_EQ(item.status(), Status::enabled) << "as the first time";
}

TEST_P(LoginItemContract, ARefusalComesInWordsAndChangesNothing) {
    auto& item = driver->item();
    driver->refuse();
    const auto error = item.registerProgram();
    ASSERT_TRUE(error);
    EXPECT_FALSE(error->domain.empty());
    EXPECT_NE(error->code, 0);
    EXPECT_FALSE(error->localizedDescription.empty());
    EXPECT_NE(item.status(), Status::enabled);
    EXPECT_NE(item.status(), Status::requiresApproval);
}

}  // namespace ferrowyn::contract

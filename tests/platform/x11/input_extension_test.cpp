#include <gtest/gtest.h>

#include "platform/x11/x11_trust.h"
#include "tests/platform/x11/scripted_x_server.h"

namespace ferrowyn {
namespace {

std::string missingOn(const ScriptedXServer::Options& options) {
    const ScriptedXServer server(options);
    EXPECT_EQ(xcb_connection_has_error(server.connection()), 0);
    return inputObstacle(server.connection());
}

TEST(InputExtensionTest, AServerWithoutXInputIsNamedAsSuch) {
    EXPECT_EQ(missingOn({.hasInputExtension = false, .inputVersion = {}}),
              "This X server has no XInput extension; Ferrowyn needs XInput 2.2 to see its shortcut: update the X "
              "server");
}

TEST(InputExtensionTest, AServerThatKnowsOnlyTheFirstXInputIsNamedAsSuch) {
    EXPECT_EQ(missingOn({.inputVersion = {}}),
              "This X server has no XInput 2; Ferrowyn needs XInput 2.2 to see its shortcut: update the X server");
}

TEST(InputExtensionTest, AnOldXInputIsNamedWithItsVersion) {
    EXPECT_EQ(missingOn({.inputVersion = {{2, 1}}}),
              "This X server has XInput 2.1; Ferrowyn needs XInput 2.2 to see its shortcut: update the X server");
    EXPECT_EQ(missingOn({.inputVersion = {{1, 9}}}),
              "This X server has XInput 1.9; Ferrowyn needs XInput 2.2 to see its shortcut: update the X server");
}

TEST(InputExtensionTest, NothingIsMissingFromTheNeededVersionOn) {
    EXPECT_EQ(missingOn({.inputVersion = {{2, 2}}}), "");
    EXPECT_EQ(missingOn({.inputVersion = {{2, 4}}}), "");
    EXPECT_EQ(missingOn({.inputVersion = {{3, 0}}}), "");
}

}  // namespace
}  // namespace ferrowyn

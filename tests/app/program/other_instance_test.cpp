#include "main/other_instance.h"

#include "platform/simulated/simulated_desktop.h"

namespace ferrowyn {
namespace {

TEST(OtherInstanceTest, AnotherProcessOfTheSameProgramCounts) {
    SimulatedDesktop desktop;
    desktop.launch({.pid = SimulatedDesktop::ownPid, .bundleIdentifier = "com.larkmoor.Ferrowyn"}, true);
    desktop.launch({.pid = 100, .bundleIdentifier = "org.editor"}, true);
    EXPECT_FALSE(isRunningElsewhere(desktop.platform()));
    desktop.launch({.pid = 101, .bundleIdentifier = "com.larkmoor.Ferrowyn"}, true);
    EXPECT_TRUE(isRunningElsewhere(desktop.platform()));
    desktop.terminate(101);
    EXPECT_FALSE(isRunningElsewhere(desktop.platform()));
}

TEST(OtherInstanceTest, WhatIsNotInstalledIsNotFound) {
    SimulatedDesktop desktop;
    desktop.launch({.pid = 100}, true);
    EXPECT_FALSE(isRunningElsewhere(desktop.platform())) << "the system does not know this process";
    desktop.launch({.pid = SimulatedDesktop::ownPid, .bundleIdentifier = std::nullopt}, true);
    desktop.launch({.pid = 101, .bundleIdentifier = std::nullopt}, true);
    EXPECT_FALSE(isRunningElsewhere(desktop.platform()));
}

}  // namespace
}  // namespace ferrowyn

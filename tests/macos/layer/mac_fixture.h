#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "platform/macos/mac_element.h"
#include "platform/platform.h"
#include "platform/simulated/simulated_desktop.h"
#include "tests/macos/fake/fake_accessibility.h"
#include "tests/macos/fake/fake_keyboard.h"
#include "tests/macos/fake/fake_run_loop.h"
#include "tests/macos/fake/fake_system.h"

namespace ferrowyn {

/// A fresh fake system, with the clock and the log of the simulated desktop. When the test and everything in it has
/// gone, no object of the system may be held any more, and none may have been misused.
class MacFixture : public testing::Test {
protected:
    MacFixture() { fake::resetSystem(); }
    ~MacFixture() override {
        // What waits on the main loop goes with it.
        desktop_.reset();
        EXPECT_THAT(fake::takeComplaints(), testing::IsEmpty());
    }

    /// Delivers what waits on the main run loop, as in this mode.
    static void runMainLoop(const std::string& mode = "kCFRunLoopDefaultMode") { fake::RunLoop::main().drain(mode); }
    /// The messages of the log, without their categories.
    [[nodiscard]] std::vector<std::string> takeLog() {
        std::vector<std::string> messages;
        for (const auto& line : desktop.takeLog()) {
            messages.push_back(line.message);
        }
        return messages;
    }
    [[nodiscard]] static AXElementRef handleOf(fake::ElementId id) {
        Owned<AXUIElementRef> handle((new fake::ElementHandle(id))->as<AXUIElementRef>());
        return AXElementRef(std::make_shared<const MacElement>(std::move(handle)));
    }

    fake::Accessibility& accessibility = fake::Accessibility::shared();
    fake::WindowServer& windowServer = fake::WindowServer::shared();
    fake::Keyboard& keyboard = fake::Keyboard::shared();
    fake::System& system = fake::System::shared();

private:
    std::unique_ptr<SimulatedDesktop> desktop_ = std::make_unique<SimulatedDesktop>();

protected:
    SimulatedDesktop& desktop = *desktop_;
    MainLoop& mainLoop = desktop_->platform().mainLoop;
    Log& log = desktop_->platform().log;
};

}  // namespace ferrowyn

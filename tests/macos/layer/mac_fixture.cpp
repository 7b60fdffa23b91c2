#include "tests/macos/layer/mac_fixture.h"

#include "tests/macos/fake/fake_accessibility.h"
#include "tests/macos/fake/fake_objects.h"
#include "tests/macos/fake/fake_run_loop.h"

namespace ferrowyn {

MacFixture::MacFixture() {
    fake::resetSystem();
}

MacFixture::~MacFixture() {
    // What waits on the main loop goes with it.
    desktop_.reset();
    EXPECT_THAT(fake::takeComplaints(), testing::IsEmpty());
}

void MacFixture::runMainLoop(const std::string& mode) {
    fake::RunLoop::main().drain(mode);
}

std::vector<std::string> MacFixture::takeLog() {
    std::vector<std::string> messages;
    for (const auto& line : desktop.takeLog()) {
        messages.push_back(line.message);
    }
    return messages;
}

AXElementRef MacFixture::handleOf(fake::ElementId id) {
    return AXElementRef(
        std::make_shared<const MacElement>(Owned<AXUIElementRef>((new fake::ElementHandle(id))->as<AXUIElementRef>())));
}

}  // namespace ferrowyn

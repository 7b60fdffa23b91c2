#pragma once

#include <gtest/gtest.h>

#include <string>

#include "tests/x11/switching_desk.h"

namespace ferrowyn::x11test {

/// A test that has a desk of its own, on which nothing may be left over at its end and whose program must end well.
template <typename Test>
class DeskTest : public Test, protected SwitchingDesk {
protected:
    explicit DeskTest(const std::string& nameOfManager) : SwitchingDesk(nameOfManager) {}
    DeskTest(const std::string& nameOfManager, const SwitchingDesk::Options& options)
        : SwitchingDesk(nameOfManager, options) {}

    void TearDown() override { expectCleanEnd(); }
};

/// The parameter is the window manager's name.
class ManagedDeskTest : public DeskTest<testing::TestWithParam<const char*>> {
protected:
    ManagedDeskTest() : DeskTest(GetParam()) {}
    explicit ManagedDeskTest(const SwitchingDesk::Options& options) : DeskTest(GetParam(), options) {}
};

inline std::string managerName(const testing::TestParamInfo<const char*>& instance) {
    return instance.param;
}

}  // namespace ferrowyn::x11test

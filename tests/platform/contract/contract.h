#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <ostream>
#include <string>

#include "core/app_window.h"

namespace ferrowyn::contract {

/// No system hands out such a number.
constexpr Pid nobody = 2'000'000'000;

/// Makes what plays a desktop towards one adapter, so that the same tests hold every adapter to what its interface
/// promises. Each program that links a contract instantiates it with the driver of its adapter.
template <typename Driver>
struct Adapter {
    std::string name;
    std::function<std::unique_ptr<Driver>()> makeDriver;

    /// The whole of what a test's name says about it.
    friend void PrintTo(const Adapter& adapter, std::ostream* out) { *out << adapter.name; }
};

template <typename Driver>
class Contract : public testing::TestWithParam<Adapter<Driver>> {
protected:
    std::unique_ptr<Driver> driver = this->GetParam().makeDriver();
};

}  // namespace ferrowyn::contract

/// A test's name ends with that of the adapter.
#define FERROWYN_HOLDS_TO(contractFixture, adapterName, ...)                                                        \
    INSTANTIATE_TEST_SUITE_P(Contract, contractFixture,                                                             \
                             testing::Values(contractFixture::ParamType{#adapterName, [] { return __VA_ARGS__; }}), \
                             [](const auto& instance) { return instance.param.name; })

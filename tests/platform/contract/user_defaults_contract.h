#pragma once

#include <string>

#include "platform/user_defaults.h"
#include "tests/platform/contract/contract.h"

namespace ferrowyn::contract {

class UserDefaultsDriver {
public:
    virtual ~UserDefaultsDriver() = default;

    virtual UserDefaults& defaults() = 0;
    /// Whether the store itself, without what is registered, holds something under the key.
    [[nodiscard]] virtual bool isStored(const std::string& key) = 0;
};

class UserDefaultsContract : public Contract<UserDefaultsDriver> {};

}  // namespace ferrowyn::contract

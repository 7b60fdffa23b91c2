#pragma once

#include "platform/login_item.h"
#include "tests/platform/contract/contract.h"

namespace ferrowyn::contract {

class LoginItemDriver {
public:
    virtual ~LoginItemDriver() = default;

    virtual LoginItem& item() = 0;
    /// The desktop refuses the next request.
    virtual void refuse() = 0;
};

class LoginItemContract : public Contract<LoginItemDriver> {
protected:
    using Status = LoginItem::Status;
};

}  // namespace ferrowyn::contract

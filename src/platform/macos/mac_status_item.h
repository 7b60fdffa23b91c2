#pragma once

#include <memory>

#include "platform/status_item.h"

namespace ferrowyn {

/// An item of variable length in the system's menu bar. Main thread.
class MacStatusItem final : public StatusItem {
public:
    MacStatusItem();
    ~MacStatusItem() override;
    MacStatusItem(const MacStatusItem&) = delete;
    MacStatusItem& operator=(const MacStatusItem&) = delete;

    void setButton(const StatusButton& button) override;
    /// A menu that is open goes on showing the old rows.
    void setMenu(const StatusMenu& menu) override;
    void setActionHandler(std::function<void(const MenuRow&)> handler) override;

private:
    struct Parts;
    std::unique_ptr<Parts> parts_;
};

}  // namespace ferrowyn

#pragma once

#include <memory>

namespace ferrowyn {

/// Keeps the system from slowing the program's timers, as it does to programs that show no window, for as long as this
/// lives. The Mac may still go to sleep. Main thread.
class MacActivity {
public:
    MacActivity();
    ~MacActivity();
    MacActivity(const MacActivity&) = delete;
    MacActivity& operator=(const MacActivity&) = delete;

private:
    struct Parts;
    std::unique_ptr<Parts> parts_;
};

}  // namespace ferrowyn

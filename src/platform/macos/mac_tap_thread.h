#pragma once

#include <functional>
#include <string>
#include <thread>

#include "platform/event_tap.h"

namespace ferrowyn {

/// The tap's thread, at the highest quality of service: a key must not wait behind whatever the machine is busy with.
class MacTapThread final : public TapThread {
public:
    /// Throws std::system_error when no thread can be made.
    MacTapThread(std::string name, std::function<void()> body);
    ~MacTapThread() override;
    MacTapThread(const MacTapThread&) = delete;
    MacTapThread& operator=(const MacTapThread&) = delete;

private:
    std::thread thread_;
};

}  // namespace ferrowyn

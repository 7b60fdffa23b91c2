#pragma once

#include <functional>
#include <string>
#include <thread>

#include "platform/event_tap.h"

namespace ferrowyn {

/// The tap's thread, favoured by the scheduler as far as the user's limits allow.
class X11TapThread final : public TapThread {
public:
    /// Throws std::system_error when no thread can be made.
    X11TapThread(const std::string& name, std::function<void()> body);
    ~X11TapThread() override;
    X11TapThread(const X11TapThread&) = delete;
    X11TapThread& operator=(const X11TapThread&) = delete;

private:
    std::thread thread_;
};

}  // namespace ferrowyn

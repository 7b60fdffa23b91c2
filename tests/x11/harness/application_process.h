#pragma once

#include <xcb/xcb.h>

#include <string>
#include <vector>

#include "tests/x11/harness/child_process.h"
#include "tests/x11/harness/private_x_server.h"

namespace ferrowyn::x11test {

/// An application with windows in a process of its own, ended with this object.
class ApplicationProcess {
public:
    /// One window a title; they are mapped, though not yet managed, when this returns. The windows after the two titles
    /// "--name" and another name are of the application of that name.
    ApplicationProcess(const PrivateXServer& server, const std::string& name, const std::vector<std::string>& titles);

    [[nodiscard]] pid_t pid() const { return process_.pid(); }
    [[nodiscard]] const std::vector<xcb_window_t>& windows() const { return windows_; }

private:
    ChildProcess process_;
    std::vector<xcb_window_t> windows_;
};

}  // namespace ferrowyn::x11test

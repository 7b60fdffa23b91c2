#pragma once

#include <xcb/xcb.h>

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "tests/x11/harness/child_process.h"
#include "tests/x11/harness/private_x_server.h"

namespace ferrowyn::x11test {

/// The program under test, as a person starts it, talking on its terminal.
class FerrowynProgram {
public:
    struct Options {
        std::map<std::string, std::string> environment;
        std::vector<std::string> arguments{"--log-level=debug"};
    };

    /// `path` is the executable. Its settings live in the server's private home.
    FerrowynProgram(const std::string& path, const PrivateXServer& server, const Options& options);
    FerrowynProgram(const std::string& path, const PrivateXServer& server) : FerrowynProgram(path, server, Options{}) {}

    [[nodiscard]] ChildProcess& process() { return process_; }
    /// Waits until the keyboard is captured and the windows are watched.
    [[nodiscard]] bool waitUntilActive() { return process_.waitForOutput("Services active"); }
    /// Waits until the published list has this many windows and this one in front. Nothing on the screen tells that
    /// while the panel is hidden; the program says it at the debug level.
    [[nodiscard]] bool waitForList(std::size_t count, xcb_window_t first, milliseconds budget = patience);
    [[nodiscard]] bool waitForFirst(xcb_window_t first, milliseconds budget = patience);
    /// What a sanitizer complained of on the program's terminal, from its first word on; empty when none did.
    [[nodiscard]] std::string sanitizerReport();

private:
    [[nodiscard]] std::string latestList();

    ChildProcess process_;
};

}  // namespace ferrowyn::x11test

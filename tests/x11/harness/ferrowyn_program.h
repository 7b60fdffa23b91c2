#pragma once

#include <xcb/xcb.h>

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "tests/x11/harness/child_process.h"
#include "tests/x11/harness/desktop_processes.h"

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

/// The program's settings file in the home of a private desktop, as an editor sees it.
class SettingsFile {
public:
    explicit SettingsFile(const PrivateXServer& server);
    ~SettingsFile();
    SettingsFile(const SettingsFile&) = delete;
    SettingsFile& operator=(const SettingsFile&) = delete;

    /// Empty when there is none.
    [[nodiscard]] std::string text() const;
    void write(const std::string& text) const;
    [[nodiscard]] const std::string& folder() const { return folder_; }
    /// Waits until the predicate holds of the text, looking again each time something in the folder changes.
    [[nodiscard]] bool waitUntil(const std::function<bool(const std::string&)>& predicate,
                                 milliseconds budget = patience);
    [[nodiscard]] bool waitFor(const std::string& part, milliseconds budget = patience);

private:
    std::string folder_;
    int changes_;
};

}  // namespace ferrowyn::x11test

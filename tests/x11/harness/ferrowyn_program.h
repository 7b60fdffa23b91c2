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

/// The program under test, started on a terminal as a user starts it.
class FerrowynProgram {
public:
    struct Options {
        std::map<std::string, std::string> environment;
        std::vector<std::string> arguments{"--log-level=debug"};
    };

    /// `path` is the executable. Its settings are in the server's private home.
    FerrowynProgram(const std::string& path, const PrivateXServer& server, const Options& options);
    FerrowynProgram(const std::string& path, const PrivateXServer& server) : FerrowynProgram(path, server, Options{}) {}

    [[nodiscard]] ChildProcess& process() { return process_; }
    /// Waits until the tap and the window index run.
    [[nodiscard]] bool waitUntilActive() { return process_.waitForOutput("Services active"); }
    /// Waits until the published list has this many windows and this one first. The screen does not show that while the
    /// panel is hidden, so it is read from the log at the debug level.
    [[nodiscard]] bool waitForList(std::size_t count, xcb_window_t first, milliseconds budget = patience);
    [[nodiscard]] bool waitForFirst(xcb_window_t first, milliseconds budget = patience);
    /// The program's output from a sanitizer's first report on; empty when there is none.
    [[nodiscard]] std::string sanitizerReport();

private:
    [[nodiscard]] std::string latestList();

    ChildProcess process_;
};

/// The program's settings file in the home of a private desktop.
class SettingsFile {
public:
    explicit SettingsFile(const PrivateXServer& server);
    ~SettingsFile();
    SettingsFile(const SettingsFile&) = delete;
    SettingsFile& operator=(const SettingsFile&) = delete;

    /// Empty when there is no file.
    [[nodiscard]] std::string text() const;
    void write(const std::string& text) const;
    [[nodiscard]] const std::string& folder() const { return folder_; }
    /// Waits until the predicate holds for the text, and checks it after each change in the folder.
    [[nodiscard]] bool waitUntil(const std::function<bool(const std::string&)>& predicate,
                                 milliseconds budget = patience);
    [[nodiscard]] bool waitFor(const std::string& part, milliseconds budget = patience);

private:
    std::string folder_;
    int changes_;
};

}  // namespace ferrowyn::x11test

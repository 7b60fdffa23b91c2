#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "tests/x11/harness/child_process.h"

namespace ferrowyn::x11test {

/// An X server of the test's own, on a display number that the server chooses.
class PrivateXServer {
public:
    /// `screens`: one geometry a screen, such as "1280x800x24"; more than one are joined with Xinerama.
    explicit PrivateXServer(const std::vector<std::string>& screens = {"1280x800x24"},
                            const std::vector<std::string>& extraArguments = {});
    /// Xephyr: a server whose screen is a window on another one's, which outlives it.
    [[nodiscard]] static PrivateXServer nestedIn(const PrivateXServer& host);

    /// As in DISPLAY.
    [[nodiscard]] const std::string& display() const { return display_; }
    /// The environment of a client: this display, no Wayland, a home of its own, no session of the person's.
    [[nodiscard]] std::map<std::string, std::string> clientEnvironment() const;
    [[nodiscard]] const TemporaryFolder& home() const { return home_; }
    /// Ends the server under its clients.
    void kill() { process_.reset(); }

private:
    PrivateXServer(std::vector<std::string> command, const std::map<std::string, std::string>& environment);

    TemporaryFolder home_;
    std::unique_ptr<ChildProcess> process_;
    std::string display_;
};

}  // namespace ferrowyn::x11test

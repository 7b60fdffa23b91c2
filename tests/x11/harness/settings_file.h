#pragma once

#include <functional>
#include <string>

#include "tests/x11/harness/deadline.h"
#include "tests/x11/harness/private_x_server.h"

namespace ferrowyn::x11test {

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

#pragma once

#include <X11/ICE/ICElib.h>
#include <X11/SM/SMlib.h>

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "tests/x11/harness/child_process.h"

namespace ferrowyn::x11test {

/// A session manager of the old protocol (XSMP), as some desktops still run one: it asks each client to save itself as
/// soon as it comes, and remembers what the client wants done at the next login. One at a time in a process. Runs only
/// while it is waited for.
class SessionManager {
public:
    SessionManager();
    ~SessionManager();
    SessionManager(const SessionManager&) = delete;
    SessionManager& operator=(const SessionManager&) = delete;

    /// For SESSION_MANAGER in the environment of clients.
    [[nodiscard]] std::string address() const;
    /// Serves clients until one has saved itself.
    [[nodiscard]] bool waitForSaving(milliseconds budget = patience);
    /// What the client that has saved itself wants: `SmRestartNever` and so on; nothing when it did not say.
    [[nodiscard]] std::optional<int> restartStyle() const { return restartStyle_; }

private:
    static Status acceptClient(SmsConn accepted, SmPointer self, unsigned long* mask, SmsCallbacks* callbacks,
                               char** failure);
    void takeProperties(int count, SmProp** properties);
    void accept(IceListenObj listener);
    void serve(IceConn connection);
    void close(IceConn connection);

    int listenerCount_ = 0;
    IceListenObj* listeners_ = nullptr;
    std::vector<IceConn> connections_;
    std::vector<SmsConn> clients_;
    bool hasSaved_ = false;
    std::optional<int> restartStyle_;
};

}  // namespace ferrowyn::x11test

#pragma once

#include <condition_variable>
#include <mutex>
#include <string>
#include <vector>

#include "core/app_window.h"
#include "tests/macos/fake/fake_core_foundation.h"

namespace ferrowyn::fake {

/// What the system says of this process and its threads, and whether secure input is on. Scripted on the main thread.
class System {
public:
    struct Thread {
        std::string name;
        unsigned qualityOfService = 0;
        friend bool operator==(const Thread&, const Thread&) = default;
    };

    [[nodiscard]] static System& shared();
    void reset();

    bool isTrusted = true;
    bool isSecureInputEnabled = false;
    int promptCount = 0;

    /// New threads stop where they set their name, until `letThreadsGo`.
    void holdNewThreads();
    void letThreadsGo();
    [[nodiscard]] std::vector<Thread> threads() const;

    // What the fake's functions need.
    void nameThread(const std::string& name);
    void setQualityOfService(unsigned qualityOfService);

private:
    mutable std::mutex lock_;
    std::condition_variable letGo_;
    bool holdsThreads_ = false;
    std::vector<Thread> threads_;
};

/// A system on which nothing has happened yet.
void resetSystem();
/// What may not be at the end of a test: objects that are held, what was done wrong with one, sources of the main loop.
[[nodiscard]] std::vector<std::string> takeComplaints();

/// A window of an application as the window server, where it is the last, and the Accessibility interface tell of it.
ElementId addWindow(Pid pid, WindowId number, const std::string& title, const Rect& frame);

}  // namespace ferrowyn::fake

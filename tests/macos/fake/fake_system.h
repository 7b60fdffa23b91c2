#pragma once

#include <CoreGraphics/CoreGraphics.h>

#include <condition_variable>
#include <map>
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

/// The scripted window server: its windows front to back, by the keys of the window list. Any thread may ask while no
/// test changes it.
class WindowServer {
public:
    struct Window {
        std::map<std::string, Value> keys;
        bool isOnActiveSpace = true;
        bool isDesktopElement = false;
    };

    [[nodiscard]] static WindowServer& shared();
    void reset() { *this = WindowServer(); }

    std::vector<Window> windows;
    /// What takes the place of a window's dictionary at this position of the list, such as a string.
    std::map<std::size_t, Value> intruders;
    bool isSilent = false;
    /// It answers with a text instead of a list.
    bool answersWithText = false;
    std::vector<CGWindowListOption> options;
};

/// A system on which nothing has happened yet.
void resetSystem();
/// What may not be at the end of a test: objects that are held, what was done wrong with one, sources of the main loop.
[[nodiscard]] std::vector<std::string> takeComplaints();

/// A window of an application as the window server, where it is the last, and the Accessibility interface tell of it.
ElementId addWindow(Pid pid, WindowId number, const std::string& title, const Rect& frame);

}  // namespace ferrowyn::fake

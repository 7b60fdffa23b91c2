#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include <condition_variable>
#include <functional>
#include <map>
#include <mutex>
#include <string>
#include <vector>

#include "tests/macos/fake/fake_objects.h"

namespace ferrowyn::fake {

/// A source of a run loop: an observer's, or that of a tap's port.
class RunLoopSource final : public Object {
public:
    /// Handles the next waiting item without holding a lock; false when nothing waits.
    using Perform = std::function<bool()>;

    RunLoopSource(std::string name, Perform perform)
        : Object("CFRunLoopSource"), name_(std::move(name)), perform_(std::move(perform)) {}

    [[nodiscard]] const std::string& name() const { return name_; }
    [[nodiscard]] bool performNext() const { return perform_(); }
    /// False once the source's port has been invalidated: the loop ignores the source then.
    std::function<bool()> isValid = [] { return true; };

private:
    std::string name_;
    Perform perform_;
};

/// One thread's run loop. Its modes are served from its own thread; sources come and go from any.
class RunLoop final : public Object {
public:
    RunLoop() : Object("CFRunLoop") {}

    /// The calling thread's; it belongs to the system until the thread ends.
    [[nodiscard]] static RunLoop& current();
    /// The loop of the thread which asks first.
    [[nodiscard]] static RunLoop& main();

    void add(RunLoopSource& source, const std::string& mode);
    void remove(RunLoopSource& source, const std::string& mode);
    CFRunLoopRunResult run(const std::string& mode, double seconds);
    void stop();
    /// Handles what waits in the mode and returns. Own thread.
    void drain(const std::string& mode);
    /// Makes all loops look for waiting items.
    static void wakeAll();

    /// "add the tap to a thread's loop in kCFRunLoopCommonModes" and so on, from all loops.
    [[nodiscard]] static std::vector<std::string> takeJournal();
    /// Adds another event to the journal.
    static void note(const std::string& event);
    /// "kCFRunLoopDefaultMode for 1 s", for each `run` of all loops.
    [[nodiscard]] static std::vector<std::string> takeRuns();
    /// Waits until there are so many of them; false when they do not come.
    [[nodiscard]] static bool waitForRuns(std::size_t count);
    [[nodiscard]] bool hasSources() const;

private:
    [[nodiscard]] std::vector<Held<RunLoopSource>> sourcesIn(const std::string& mode) const;
    /// Lets the first source that has something waiting handle it.
    bool performNext(const std::string& mode) const;
    [[nodiscard]] std::string name() const;

    std::map<std::string, std::vector<Held<RunLoopSource>>> sources_;
    bool isRunning_ = false;
    bool isStopped_ = false;
};

}  // namespace ferrowyn::fake

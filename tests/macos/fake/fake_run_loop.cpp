#include "tests/macos/fake/fake_run_loop.h"

#include <algorithm>
#include <chrono>
#include <sstream>
#include <utility>

#include "tests/macos/fake/fake_core_foundation.h"
#include "tests/macos/fake/fake_objects.h"

namespace ferrowyn::fake {

namespace {

constexpr const char* commonModes = "kCFRunLoopCommonModes";

/// One lock for all loops: they are few, and every wait is for all of them.
std::mutex lock;
std::condition_variable changed;
std::vector<std::string> journal;
std::vector<std::string> runs;
/// Counts what may have made a source ready, so that no wake-up falls between looking and waiting.
std::uint64_t wakeUps = 0;

/// The thread's own hold on its loop, given up when the thread ends.
struct ThreadLoop {
    ThreadLoop() { Objects::shared().giveToSystem(*loop, true); }
    ThreadLoop(const ThreadLoop&) = delete;
    ThreadLoop& operator=(const ThreadLoop&) = delete;
    ~ThreadLoop() {
        Objects::shared().giveToSystem(*loop, false);
        CFRelease(loop);
    }
    RunLoop* loop = new RunLoop;
};

}  // namespace

RunLoop& RunLoop::current() {
    thread_local const ThreadLoop own;
    return *own.loop;
}

RunLoop& RunLoop::main() {
    static RunLoop& loop = current();
    return loop;
}

void RunLoop::add(RunLoopSource& source, const std::string& mode) {
    const std::scoped_lock guard(lock);
    journal.push_back("add " + source.name() + " to " + name() + " in " + mode);
    sources_[mode].push_back(Held<RunLoopSource>::retaining(&source));
    ++wakeUps;
    changed.notify_all();
}

void RunLoop::remove(RunLoopSource& source, const std::string& mode) {
    Held<RunLoopSource> removed;
    const std::scoped_lock guard(lock);
    journal.push_back("remove " + source.name() + " from " + name() + " in " + mode);
    auto& held = sources_[mode];
    const auto found = std::ranges::find(held, &source, &Held<RunLoopSource>::get);
    if (found == held.end()) {
        Objects::shared().fault("CFRunLoopRemoveSource of a source that is not on this loop in this mode");
        return;
    }
    removed = std::move(*found);
    held.erase(found);
}

CFRunLoopRunResult RunLoop::run(const std::string& mode, double seconds) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::duration<double>(seconds);
    std::unique_lock guard(lock);
    std::ostringstream run;
    run << mode << " for " << seconds << " s";
    runs.push_back(run.str());
    changed.notify_all();
    isRunning_ = true;
    // A stop from before is forgotten, as the system forgets it.
    isStopped_ = false;
    auto result = kCFRunLoopRunTimedOut;
    for (bool isWaiting = true; isWaiting;) {
        const auto seen = wakeUps;
        guard.unlock();
        const bool hasSources = !sourcesIn(mode).empty();
        const bool didSomething = performNext(mode);
        guard.lock();
        if (isStopped_ || !hasSources) {
            result = hasSources ? kCFRunLoopRunStopped : kCFRunLoopRunFinished;
            break;
        }
        isWaiting = didSomething || changed.wait_until(guard, end, [&] { return isStopped_ || wakeUps != seen; });
    }
    isRunning_ = false;
    return result;
}

void RunLoop::stop() {
    const std::scoped_lock guard(lock);
    journal.push_back("stop " + name());
    if (isRunning_) {
        isStopped_ = true;
        changed.notify_all();
    }
}

void RunLoop::drain(const std::string& mode) {
    while (performNext(mode)) {
    }
}

bool RunLoop::performNext(const std::string& mode) const {
    return std::ranges::any_of(sourcesIn(mode), [](const auto& source) { return source->performNext(); });
}

void RunLoop::wakeAll() {
    const std::scoped_lock guard(lock);
    ++wakeUps;
    changed.notify_all();
}

std::vector<std::string> RunLoop::takeJournal() {
    const std::scoped_lock guard(lock);
    return std::exchange(journal, {});
}

void RunLoop::note(const std::string& event) {
    const std::scoped_lock guard(lock);
    journal.push_back(event);
}

std::vector<std::string> RunLoop::takeRuns() {
    const std::scoped_lock guard(lock);
    return std::exchange(runs, {});
}

bool RunLoop::waitForRuns(std::size_t count) {
    std::unique_lock guard(lock);
    return changed.wait_for(guard, std::chrono::seconds(20), [count] { return runs.size() >= count; });
}

bool RunLoop::hasSources() const {
    const std::scoped_lock guard(lock);
    return std::any_of(sources_.begin(), sources_.end(), [](const auto& each) { return !each.second.empty(); });
}

/// Those of the common modes are served in every mode that a program runs its loops in.
std::vector<Held<RunLoopSource>> RunLoop::sourcesIn(const std::string& mode) const {
    const std::scoped_lock guard(lock);
    std::vector<Held<RunLoopSource>> found;
    for (const auto& [each, sources] : sources_) {
        if (each == mode || each == commonModes) {
            for (const auto& source : sources) {
                if (source->isValid()) {
                    found.push_back(Held<RunLoopSource>::retaining(source.get()));
                }
            }
        }
    }
    return found;
}

std::string RunLoop::name() const {
    return this == &main() ? "the main loop" : "a thread's loop";
}

}  // namespace ferrowyn::fake

using namespace ferrowyn::fake;

const CFRunLoopMode kCFRunLoopDefaultMode = constantString("kCFRunLoopDefaultMode");
const CFRunLoopMode kCFRunLoopCommonModes = constantString(commonModes);

CFRunLoopRef CFRunLoopGetCurrent() {
    return RunLoop::current().as<CFRunLoopRef>();
}

CFRunLoopRef CFRunLoopGetMain() {
    return RunLoop::main().as<CFRunLoopRef>();
}

CFRunLoopRunResult CFRunLoopRunInMode(CFRunLoopMode mode, CFTimeInterval seconds, Boolean returnAfterSourceHandled) {
    if (returnAfterSourceHandled) {
        Objects::shared().fault("CFRunLoopRunInMode that returns after each source");
    }
    const std::string name = textOf(mode, "CFRunLoopRunInMode");
    if (name == commonModes) {
        // A loop cannot run in it: the call returns at once.
        Objects::shared().fault("CFRunLoopRunInMode in the common modes");
        return kCFRunLoopRunFinished;
    }
    return RunLoop::current().run(name, seconds);
}

void CFRunLoopStop(CFRunLoopRef loop) {
    Objects::shared().get<RunLoop>(loop, "CFRunLoopStop").stop();
}

void CFRunLoopAddSource(CFRunLoopRef loop, CFRunLoopSourceRef source, CFRunLoopMode mode) {
    auto& added = Objects::shared().get<RunLoopSource>(source, "CFRunLoopAddSource");
    Objects::shared().get<RunLoop>(loop, "CFRunLoopAddSource").add(added, textOf(mode, "CFRunLoopAddSource"));
}

void CFRunLoopRemoveSource(CFRunLoopRef loop, CFRunLoopSourceRef source, CFRunLoopMode mode) {
    auto& removed = Objects::shared().get<RunLoopSource>(source, "CFRunLoopRemoveSource");
    Objects::shared()
        .get<RunLoop>(loop, "CFRunLoopRemoveSource")
        .remove(removed, textOf(mode, "CFRunLoopRemoveSource"));
}

#pragma once

#include <deque>
#include <functional>
#include <mutex>

namespace ferrowyn {

/// Carries commands to the tap thread in their order and wakes it. Any thread.
class X11CommandQueue {
public:
    using Command = std::function<void()>;

    X11CommandQueue();
    ~X11CommandQueue();
    X11CommandQueue(const X11CommandQueue&) = delete;
    X11CommandQueue& operator=(const X11CommandQueue&) = delete;

    /// Readable while a command waits. Negative when the process can have no more descriptors; then nothing wakes the
    /// tap thread, and the queue must not be used.
    [[nodiscard]] int fileDescriptor() const { return eventDescriptor_; }
    void post(Command command);
    /// Runs the commands that wait now; one that is posted meanwhile waits for the next call. Tap thread.
    void run();

private:
    int eventDescriptor_;
    std::mutex lock_;
    std::deque<Command> commands_;
};

}  // namespace ferrowyn

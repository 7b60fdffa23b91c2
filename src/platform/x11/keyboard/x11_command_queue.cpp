#include "platform/x11/keyboard/x11_command_queue.h"

#include <sys/eventfd.h>
#include <unistd.h>

#include <utility>

namespace ferrowyn {

X11CommandQueue::X11CommandQueue() : eventDescriptor_(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {}

X11CommandQueue::~X11CommandQueue() {
    if (eventDescriptor_ >= 0) {
        close(eventDescriptor_);
    }
}

void X11CommandQueue::post(Command command) {
    {
        const std::scoped_lock guard(lock_);
        commands_.push_back(std::move(command));
    }
    // Fails only when the counter is at its limit, and then the descriptor is readable anyway.
    [[maybe_unused]] const int result = eventfd_write(eventDescriptor_, 1);
}

void X11CommandQueue::run() {
    // Before the commands are taken, so that the wake-up of one that comes meanwhile is not lost.
    eventfd_t count = 0;
    [[maybe_unused]] const int result = eventfd_read(eventDescriptor_, &count);
    std::deque<Command> waiting;
    {
        const std::scoped_lock guard(lock_);
        waiting.swap(commands_);
    }
    for (const auto& command : waiting) {
        command();
    }
}

}  // namespace ferrowyn

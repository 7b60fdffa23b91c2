#include "platform/x11/keyboard/x11_tap_mailbox.h"

#include <sys/eventfd.h>
#include <unistd.h>

namespace ferrowyn {

X11TapMailbox::X11TapMailbox() : eventDescriptor_(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {}

X11TapMailbox::~X11TapMailbox() {
    close(eventDescriptor_);
}

void X11TapMailbox::post(const X11TapRequest& request) {
    {
        const std::scoped_lock guard(lock_);
        requests_.push_back(request);
    }
    wake();
}

void X11TapMailbox::wake() const {
    // Fails only when the counter is at its limit, and then the descriptor is readable anyway.
    [[maybe_unused]] const int result = eventfd_write(eventDescriptor_, 1);
}

std::optional<X11TapRequest> X11TapMailbox::take() {
    const std::scoped_lock guard(lock_);
    if (requests_.empty()) {
        return std::nullopt;
    }
    const auto request = requests_.front();
    requests_.pop_front();
    return request;
}

void X11TapMailbox::acknowledge() const {
    eventfd_t count = 0;
    [[maybe_unused]] const int result = eventfd_read(eventDescriptor_, &count);
}

}  // namespace ferrowyn

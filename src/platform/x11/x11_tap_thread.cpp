#include "platform/x11/x11_tap_thread.h"

#include <pthread.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <utility>

namespace ferrowyn {

namespace {

/// What the kernel keeps of a thread's name, its end not counted.
constexpr std::size_t maximumNameLength = 15;
constexpr int highestNiceness = -20;

/// The end tells threads apart, not the reversed domain in front of it.
std::string shortName(const std::string& name) {
    return name.size() <= maximumNameLength ? name : name.substr(name.size() - maximumNameLength);
}

/// A key must not wait behind whatever the machine is busy with. The kernel clamps to what the user's limits allow;
/// most users are allowed nothing, and then the thread runs like any other.
void raisePriority() {
    const auto thread = static_cast<id_t>(syscall(SYS_gettid));
    for (int niceness = highestNiceness; niceness < 0; ++niceness) {
        if (setpriority(PRIO_PROCESS, thread, niceness) == 0) {
            return;
        }
    }
}

}  // namespace

X11TapThread::X11TapThread(const std::string& name, std::function<void()> body)
    : thread_([name = shortName(name), body = std::move(body)] {
          pthread_setname_np(pthread_self(), name.c_str());
          raisePriority();
          body();
      }) {}

X11TapThread::~X11TapThread() {
    thread_.join();
}

}  // namespace ferrowyn

#include "platform/macos/mac_tap_thread.h"

#include <pthread.h>

#include <utility>

namespace ferrowyn {

MacTapThread::MacTapThread(std::string name, std::function<void()> body)
    : thread_([name = std::move(name), body = std::move(body)] {
          // Without its name or its class of service the thread does the same, only worse.
          static_cast<void>(pthread_setname_np(name.c_str()));
          static_cast<void>(pthread_set_qos_class_self_np(QOS_CLASS_USER_INTERACTIVE, 0));
          body();
      }) {}

MacTapThread::~MacTapThread() {
    thread_.join();
}

}  // namespace ferrowyn

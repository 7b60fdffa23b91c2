#include "platform/linux/bus_thread.h"

#include <utility>

namespace ferrowyn {

namespace {

/// Milliseconds.
constexpr unsigned long patienceWithBuses = 1000;

}  // namespace

BusThread::BusThread(const char* name, QObject* listener, std::function<void()> start)
    : thread_(std::make_unique<QThread>()) {
    thread_->setObjectName(name);
    listener->moveToThread(thread_.get());
    QObject::connect(thread_.get(), &QThread::started, listener, std::move(start));
    QObject::connect(thread_.get(), &QThread::finished, listener, &QObject::deleteLater);
    thread_->start(QThread::LowPriority);
}

BusThread::~BusThread() {
    thread_->quit();
    if (!thread_->wait(patienceWithBuses)) {
        // It still waits for a bus that does not answer. The program is ending: better it ends without it.
        static_cast<void>(thread_.release());
    }
}

}  // namespace ferrowyn

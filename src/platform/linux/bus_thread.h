#pragma once

#include <QObject>
#include <QThread>
#include <functional>
#include <memory>

namespace ferrowyn {

/// A thread on which an object speaks to a bus: even connecting to one waits for it, and a bus that does not answer
/// must not hold up the program.
class BusThread {
public:
    /// `listener` lives on the thread from now on, and dies with it; `start` is called there first.
    BusThread(const char* name, QObject* listener, std::function<void()> start);
    ~BusThread();
    BusThread(const BusThread&) = delete;
    BusThread& operator=(const BusThread&) = delete;

private:
    std::unique_ptr<QThread> thread_;
};

}  // namespace ferrowyn

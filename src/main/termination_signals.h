#pragma once

#include <functional>
#include <memory>

class QSocketNotifier;

namespace ferrowyn {

/// Turns SIGTERM, SIGINT and, unless the program was started with nohup, SIGHUP into a call on the main loop, so that
/// the program can end in order. A second signal ends it at once. Only one object in a process. Main thread; needs a
/// QCoreApplication, which outlives it.
class TerminationSignals {
public:
    explicit TerminationSignals(std::function<void()> onSignal);
    ~TerminationSignals();
    TerminationSignals(const TerminationSignals&) = delete;
    TerminationSignals& operator=(const TerminationSignals&) = delete;

private:
    std::function<void()> onSignal_;
    std::unique_ptr<QSocketNotifier> notifier_;
};

}  // namespace ferrowyn

#pragma once

#include <functional>
#include <memory>

class QSocketNotifier;

namespace ferrowyn {

/// Turns SIGTERM, SIGINT and, unless the program was started with nohup, SIGHUP into a call on the main loop, where the
/// program can end in order. The second signal ends it at once, should it not get there. One a process; with a
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

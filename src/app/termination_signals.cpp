#include "app/termination_signals.h"

#include <fcntl.h>
#include <signal.h>
#include <unistd.h>

#include <QSocketNotifier>
#include <array>
#include <cerrno>
#include <utility>

namespace ferrowyn {

namespace {

constexpr std::array handledSignals{SIGTERM, SIGINT, SIGHUP};

/// A signal handler can reach nothing else: the reading and the writing end of a pipe.
std::array<int, 2> signalPipe{-1, -1};

extern "C" void writeToSignalPipe(int /*signal*/) {
    const int savedError = errno;
    const char byte = 1;
    [[maybe_unused]] const auto ignored = ::write(signalPipe[1], &byte, 1);
    errno = savedError;
}

/// Whoever starts a program with nohup wants it to outlive the terminal.
bool isToBeSurvived(int signal) {
    struct sigaction inherited {};
    return signal == SIGHUP && sigaction(signal, nullptr, &inherited) == 0 && inherited.sa_handler == SIG_IGN;
}

void setHandlers(void (*handler)(int), int flags) {
    struct sigaction action {};
    action.sa_handler = handler;
    action.sa_flags = flags;
    sigemptyset(&action.sa_mask);
    for (const int signal : handledSignals) {
        if (!isToBeSurvived(signal)) {
            sigaction(signal, &action, nullptr);
        }
    }
}

/// Not pipe2, which not every system has.
bool openSignalPipe() {
    if (pipe(signalPipe.data()) != 0) {
        return false;
    }
    for (const int end : signalPipe) {
        fcntl(end, F_SETFD, FD_CLOEXEC);
        fcntl(end, F_SETFL, O_NONBLOCK);
    }
    return true;
}

}  // namespace

TerminationSignals::TerminationSignals(std::function<void()> onSignal) : onSignal_(std::move(onSignal)) {
    if (!openSignalPipe()) {
        return;  // Without a pipe the signals end the program the hard way, as they do by default.
    }
    notifier_ = std::make_unique<QSocketNotifier>(signalPipe[0], QSocketNotifier::Read);
    QObject::connect(notifier_.get(), &QSocketNotifier::activated, notifier_.get(), [this] {
        notifier_->setEnabled(false);
        onSignal_();
    });
    // Back to the default after the first one.
    setHandlers(writeToSignalPipe, SA_RESTART | static_cast<int>(SA_RESETHAND));
}

TerminationSignals::~TerminationSignals() {
    setHandlers(SIG_DFL, 0);
    notifier_.reset();
    for (int& end : signalPipe) {
        if (end >= 0) {
            ::close(std::exchange(end, -1));
        }
    }
}

}  // namespace ferrowyn

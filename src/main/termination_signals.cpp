#include "main/termination_signals.h"

#include <fcntl.h>
#include <signal.h>
#include <unistd.h>

#include <QSocketNotifier>
#include <array>
#include <atomic>
#include <cerrno>
#include <optional>
#include <utility>

namespace ferrowyn {

namespace {

constexpr std::array handledSignals{SIGTERM, SIGINT, SIGHUP};

/// The writing end of a pipe, for the signal handler. Any thread may run the handler, even when the object is
/// destroyed. The pipe stays open until the process ends, because such a thread might write to another file otherwise.
std::atomic<int> signalPipe{-1};
static_assert(std::atomic<int>::is_always_lock_free, "a signal handler waits for no lock");

extern "C" void writeToSignalPipe(int /*signal*/) {
    const int savedError = errno;
    const char byte = 1;
    [[maybe_unused]] const auto ignored = ::write(signalPipe, &byte, 1);
    errno = savedError;
}

/// Whether the signal stays ignored: a program started with nohup is to run on when the terminal closes.
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

/// Opens the pipe and returns its reading end. Does not use pipe2, which not every system has.
std::optional<int> openSignalPipe() {
    std::array<int, 2> ends{};
    if (pipe(ends.data()) != 0) {
        return std::nullopt;
    }
    for (const int end : ends) {
        fcntl(end, F_SETFD, FD_CLOEXEC);
        fcntl(end, F_SETFL, O_NONBLOCK);
    }
    signalPipe = ends[1];
    return ends[0];
}

}  // namespace

TerminationSignals::TerminationSignals(std::function<void()> onSignal) : onSignal_(std::move(onSignal)) {
    const auto readingEnd = openSignalPipe();
    if (!readingEnd) {
        return;  // Without a pipe the signals end the program the hard way, as they do by default.
    }
    notifier_ = std::make_unique<QSocketNotifier>(*readingEnd, QSocketNotifier::Read);
    QObject::connect(notifier_.get(), &QSocketNotifier::activated, notifier_.get(), [this] {
        notifier_->setEnabled(false);
        onSignal_();
    });
    // After the first signal the default handler is back.
    setHandlers(writeToSignalPipe, SA_RESTART | static_cast<int>(SA_RESETHAND));
}

TerminationSignals::~TerminationSignals() {
    setHandlers(SIG_DFL, 0);
}

}  // namespace ferrowyn

#pragma once

#include <QCoreApplication>
#include <QTimer>
#include <functional>

#include "tests/x11/harness/child_process.h"

namespace ferrowyn::x11test {

/// Runs the toolkit's loop in this thread until the predicate holds; false at the deadline. What happens outside this
/// process is looked at again at each tick.
[[nodiscard]] inline bool runToolkitUntil(const std::function<bool()>& predicate, milliseconds budget = patience,
                                          milliseconds between = milliseconds{5}) {
    const Deadline deadline(budget);
    QTimer tick;
    tick.start(between);
    while (!predicate()) {
        if (deadline.hasPassed()) {
            return false;
        }
        QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents);
    }
    return true;
}

}  // namespace ferrowyn::x11test

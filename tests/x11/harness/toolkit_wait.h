#pragma once

#include <QCoreApplication>
#include <QTimer>
#include <functional>

#include "tests/x11/harness/child_process.h"

namespace ferrowyn::x11test {

/// Runs Qt's loop in this thread until the predicate holds; false at the deadline. The predicate is checked after each
/// event, and every `between` for changes outside this process.
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

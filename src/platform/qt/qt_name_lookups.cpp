#include "platform/qt/qt_name_lookups.h"

#include <QHostInfo>
#include <atomic>
#include <cstdio>
#include <cstdlib>

namespace ferrowyn::name_lookups {

namespace {

std::atomic<bool> isUnderWay{false};

void endAtOnce(int status) {
    if (isUnderWay.load()) {
        std::fflush(nullptr);
        std::_Exit(status);
    }
}

bool endAtOnceFirstOfAll() {
    constexpr int noLookup = -1;
    // Has the toolkit make its own static object: what is registered after it is called before it.
    QHostInfo::abortHostLookup(noLookup);
#ifdef __GLIBC__
    return on_exit([](int status, void* /*nothing*/) { endAtOnce(status); }, nullptr) == 0;
#else
    // The status is not told here, and nobody waits for that of a program in a menu bar.
    return std::atexit([] { endAtOnce(EXIT_SUCCESS); }) == 0;
#endif
}

}  // namespace

void noteUnderWay() {
    [[maybe_unused]] static const bool isRegistered = endAtOnceFirstOfAll();
    isUnderWay.store(true);
}

void noteDone() {
    isUnderWay.store(false);
}

}  // namespace ferrowyn::name_lookups

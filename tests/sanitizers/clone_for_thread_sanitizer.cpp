#include <dlfcn.h>
#include <sched.h>

#include <cstdarg>

// Goes before the thread sanitizer's own clone() in the tests that are built for it. Qt starts a process with a child
// that borrows the parent's memory, and so the sanitizer's record of the calling thread, too: g++ 12's undoes its
// preparations for a fork in both of them, and sees no lock of that thread's, and reports nothing of it, for ever
// after. A child with a copy of the memory does the same work and leaves the record alone.
extern "C" int clone(int (*function)(void*), void* stack, int flags, void* argument, ...) {
    // Callers may leave these out; so does the sanitizer read them.
    va_list rest;
    va_start(rest, argument);
    void* const parentThread = va_arg(rest, void*);
    void* const storage = va_arg(rest, void*);
    void* const childThread = va_arg(rest, void*);
    va_end(rest);
    static const auto next = reinterpret_cast<decltype(&clone)>(dlsym(RTLD_NEXT, "clone"));
    const bool isBorrowing = (flags & CLONE_VFORK) != 0;
    return next(function, stack, isBorrowing ? flags & ~(CLONE_VM | CLONE_VFORK) : flags, argument, parentThread,
                storage, childThread);
}

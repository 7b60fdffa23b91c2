// Written for Ferrowyn, and used only for its checks on Linux; not Apple's headers. They declare what the macOS layer
// calls and nothing else, from public knowledge of the API; see README.md here.
#pragma once

// Linux has a function of the same name that takes the thread too: it is put out of the way, and the one declared here
// has the name that it has in a Mac's object files, where nothing of Linux is.
#define pthread_setname_np ferrowyn_checks_linux_pthread_setname_np
#include_next <pthread.h>
#undef pthread_setname_np

#include <pthread/qos.h>

CF_EXPORT int pthread_setname_np(const char* _Nonnull name) __asm__("_pthread_setname_np");

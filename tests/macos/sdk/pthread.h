// Written for Ferrowyn, and used only for its checks on Linux; not Apple's headers (see README.md here).
#pragma once

// Linux has a function of the same name that takes the thread too: it is put out of the way, and the one declared here
// has the name that it has in a Mac's object files, where nothing of Linux is.
#define pthread_setname_np ferrowyn_checks_linux_pthread_setname_np
#include_next <pthread.h>
#undef pthread_setname_np

#include <CoreFoundation/CoreFoundation.h>

CF_STRICT_BEGIN

CF_ENUM(unsigned int, qos_class_t){QOS_CLASS_USER_INTERACTIVE = 0x21, QOS_CLASS_UTILITY = 0x11};

int pthread_set_qos_class_self_np(qos_class_t qosClass, int relativePriority);

CF_STRICT_END

CF_EXPORT int pthread_setname_np(const char* _Nonnull name) __asm__("_pthread_setname_np");

// Written for Ferrowyn, and used only for its checks on Linux; not Apple's headers. They declare what the macOS layer
// calls and nothing else, from public knowledge of the API; see README.md here.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

CF_ENUM(unsigned int, qos_class_t){
    QOS_CLASS_USER_INTERACTIVE = 0x21, QOS_CLASS_USER_INITIATED = 0x19, QOS_CLASS_DEFAULT = 0x15,
    QOS_CLASS_UTILITY = 0x11,          QOS_CLASS_BACKGROUND = 0x09,
};

CF_EXPORT int pthread_set_qos_class_self_np(qos_class_t qosClass, int relativePriority) CF_WARN_UNUSED_RESULT;

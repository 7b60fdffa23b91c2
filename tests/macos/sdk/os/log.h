// Written for Ferrowyn, and used only for its checks on Linux; not Apple's headers (see README.md here).
#pragma once

#include <FerrowynChecksOnly.h>
#include <stdint.h>

#if defined(__OBJC__)
#include <objc/NSObject.h>

@protocol OS_os_log <NSObject>
@end
typedef NSObject<OS_os_log>* os_log_t;
#define OS_OBJECT_RETURNS_RETAINED __attribute__((ns_returns_retained))
#else
typedef struct os_log_s* os_log_t;
#define OS_OBJECT_RETURNS_RETAINED
#endif

typedef uint8_t os_log_type_t;
enum : os_log_type_t { OS_LOG_TYPE_DEFAULT = 0x00, OS_LOG_TYPE_DEBUG = 0x02, OS_LOG_TYPE_ERROR = 0x10 };

extern "C" {
os_log_t _Nonnull os_log_create(const char* _Nonnull subsystem, const char* _Nonnull category)
    __attribute__((warn_unused_result)) OS_OBJECT_RETURNS_RETAINED;
/// A macro on a Mac; the checks of the format are the same.
void os_log_with_type(os_log_t _Nonnull log, os_log_type_t type, const char* _Nonnull format, ...)
    __attribute__((format(os_log, 3, 4)));
}

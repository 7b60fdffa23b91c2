// Written for Ferrowyn, and used only for its checks on Linux; not Apple's headers (see README.md here).
#pragma once

#include <CoreFoundation/CoreFoundation.h>

CF_EXPORT Boolean IsSecureEventInputEnabled(void) __attribute__((warn_unused_result));

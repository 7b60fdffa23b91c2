// Written for Ferrowyn, and used only for its checks on Linux; not Apple's headers. They declare what the macOS layer
// calls and nothing else, from public knowledge of the API; see README.md here.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

CF_EXPORT Boolean IsSecureEventInputEnabled(void) CF_WARN_UNUSED_RESULT;

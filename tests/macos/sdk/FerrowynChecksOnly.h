// Written for Ferrowyn, and used only for its checks on Linux; not Apple's headers (see README.md here).
#pragma once

// A Mac has Apple's own headers, which these must never stand in front of.
#if __has_include(<libkern/OSAtomic.h>)
#error "tests/macos/sdk is for checks on Linux: take it off the include path of this build"
#endif

// Written for Ferrowyn, and used only for its checks on Linux; no part of any system.
#pragma once

// libc++ looks for a header that musl does without: what it declares stands in <locale.h> there.
#include <locale.h>

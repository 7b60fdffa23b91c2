#pragma once

// The header of xcb's XKB names a field with a word that C++ reserves.
#define explicit explicitField
#include <xcb/xkb.h>
#undef explicit

#pragma once

// This header of xcb has a field with the name of a C++ keyword.
#define explicit explicitField
#include <xcb/xkb.h>
#undef explicit

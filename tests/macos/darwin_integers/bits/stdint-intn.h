// The integers of exact size as they are on a Mac, where those of 64 bits are "long long" and not "long". For
// scripts/check_libcxx.sh alone, in the place of the C library's header of this name.
#pragma once

#include <bits/types.h>

typedef __int8_t int8_t;
typedef __int16_t int16_t;
typedef __int32_t int32_t;
typedef long long int64_t;
